// SPDX-License-Identifier: MIT
#include "UpdateTest.hpp"

#include "../TestKit/OpenDescriptors.hpp"
#include "ddal_error.h"

#include <filesystem>

namespace dorn::test {

UpdateTest::UpdateTest()
{
    m_board.cells("units/unit@0", "dorn,hw-sw-id", {boardHwSwId});
    std::filesystem::create_directories(m_node.boardPath(directory));
    std::filesystem::create_directories(m_node.boardPath("/tmp"));
    std::array<char, 64> text{};
    ddal_strerror(DDAL_OK, text.data(), text.size() - 1); // drivers keep open what tells which of them fail
    m_descriptors = testkit::openDescriptors();
}

void UpdateTest::useUnit(const std::string& unitId)
{
    m_board.text("units/unit@0", "dorn,unit-id", unitId);
    unit_init(); // the process may have known another one
}

void UpdateTest::putImage(const std::string& name, std::uint32_t version, std::uint32_t hwSwId) const
{
    std::array<char, 16> id{};
    std::snprintf(id.data(), id.size(), "%X", hwSwId);
    const std::string payload = payloadWith(version);
    m_node.writeBoardFile(std::string(directory) + "/" + name,
                          imageOf(payload, trailerOf(element("Crc32", std::to_string(crcOf(payload))) +
                                                     element("SwVersion", std::to_string(version)) +
                                                     element("HwSwIdList", element("HwSwId", id.data())))));
}

std::string UpdateTest::payloadWith(std::uint32_t version)
{
    std::string payload;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        payload += static_cast<char>(version >> shift & 0xFFU);
    }
    return payload + payloadOf(5000);
}

std::vector<std::string> UpdateTest::linesOf(const std::string& function)
{
    const std::vector<std::string> all = m_syslog.texts();
    std::vector<std::string> lines;
    for (std::size_t index = m_linesSeen; index < all.size(); ++index) {
        if (all[index].find(" " + function + "(): ") != std::string::npos) {
            lines.push_back(all[index]);
        }
    }
    m_linesSeen = all.size();
    return lines;
}

std::string driverFailure(const std::string& function, const std::string& driverFunction)
{
    std::array<char, 64> text{};
    EXPECT_EQ(ddal_strerror(DDAL_ERROR_IO, text.data(), text.size() - 1), DDAL_OK);
    return "info " + function + "(): " + driverFunction + "() failed with error 9 '" + text.data() + "'";
}

} // namespace dorn::test
