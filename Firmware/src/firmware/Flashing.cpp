// SPDX-License-Identifier: MIT
#include "firmware.h"

#include "AaFile.h"
#include "binary.h"
#include "binary/CopyPayload.hpp"
#include "ddal_boot.h"
#include "ddal_fpga.h"
#include "firmware/DriverFailure.hpp"
#include "firmware/FirmwareCatalogue.hpp"
#include "firmware/UnitIdentity.hpp"

#include <cerrno>
#include <syslog.h>

using namespace vel::hwapi::firmware;

namespace {

constexpr std::uint32_t primarySlot = DDAL_FPGA_SLOT_PRIMARY;
constexpr std::uint32_t secondarySlot = DDAL_FPGA_SLOT_SECONDARY;

/// The payload of an image in a file of its own, for the time of flashing.
class TemporaryPayload {
public:
    /// @param function whose log lines it writes @param path where it lies
    TemporaryPayload(const char* function, const char* path) : m_function(function), m_path(path) {}
    ~TemporaryPayload()
    {
        if (m_isMade && AaFileRemove(m_path) != 0) {
            syslog(LOG_INFO, "%s(): remove '%s' failed %d", m_function, m_path, errno);
        }
    }
    TemporaryPayload(const TemporaryPayload&) = delete;
    TemporaryPayload& operator=(const TemporaryPayload&) = delete;

    const char* path() const { return m_path; }

    /// Checks an image and copies its payload. A copy that fails leaves nothing of its own behind, and takes away
    /// nothing that it could not open. @return 0 or the result of the update.
    std::int32_t take(const char* image)
    {
        if (const std::int32_t result = binary_crc(image); result != BINARY_OK) {
            syslog(LOG_INFO, "%s(): binary_crc() failed %d", m_function, result);
            return FIRMWARE_UPDATE_CRC;
        }
        syslog(LOG_INFO, "%s(): binary '%s' is ok", m_function, image);
        AaFileRemove(m_path); // what an earlier update or somebody else has left there
        if (const std::int32_t result = copyPayload(image, m_path, NewFileOnly::Yes); result != BINARY_COPY_OK) {
            syslog(LOG_INFO, "%s(): binary_copy_without_trailer() failed %d", m_function, result);
            if (result == BINARY_COPY_NOT_READ || result == BINARY_COPY_NOT_WRITTEN) {
                AaFileRemove(m_path); // half a payload would only keep a full disk full
            }
            return FIRMWARE_UPDATE_COPY;
        }
        m_isMade = true;
        return 0;
    }

private:
    const char* m_function;
    const char* m_path;
    bool m_isMade = false;
};

/// Flashes a slot. @return whether that worked.
bool flash(const char* function, std::uint32_t id, std::uint32_t slot, const char* path)
{
    const std::int32_t result = ddal_fpga_update_mod(id, slot, path);
    if (result != DDAL_OK) {
        logDriverFailure(function, "ddal_fpga_update_mod", result);
    }
    return result == DDAL_OK;
}

/// The driver's number of the unit's BMU.
std::uint32_t ownBmu()
{
    return isThisUnit(UnitKey::Version, microBmuUnit) ? 0 : 1;
}

} // namespace

std::int32_t update_uboot(const char* name)
{
    syslog(LOG_INFO, "%s(): start uboot update", __func__);
    TemporaryPayload payload(__func__, "/tmp/u-boot.uim");
    if (const std::int32_t failure = payload.take(name); failure != 0) {
        return failure;
    }
    const std::int32_t result = ddal_boot_update_uboot(payload.path());
    if (result != DDAL_OK) {
        logDriverFailure(__func__, "ddal_boot_update_uboot", result);
        return FIRMWARE_UPDATE_PRIMARY;
    }
    syslog(LOG_INFO, "%s(): uboot update is ok", __func__);
    return 0;
}

std::int32_t update_bmu(const char* name, std::uint32_t id)
{
    const std::uint32_t bmu = id != 0 ? id : ownBmu();
    syslog(LOG_INFO, "%s(): start bmu update", __func__);
    TemporaryPayload payload(__func__, "/tmp/bmufile");
    if (const std::int32_t failure = payload.take(name); failure != 0) {
        return failure;
    }
    syslog(LOG_INFO, "%s(): call ddal_fpga_update_mod(0x%X, 0x%X, %s)", __func__, bmu, primarySlot, payload.path());
    if (!flash(__func__, bmu, primarySlot, payload.path())) {
        return FIRMWARE_UPDATE_PRIMARY;
    }
    syslog(LOG_INFO, "%s(): bmu update is ok", __func__);
    return 0;
}

std::int32_t update_fpga(const char* name)
{
    const char* fpga = nullptr;
    const char* chip = nullptr;
    std::uint32_t id = 0;
    if (get_fpga(&fpga, &chip, &id) != 0) {
        syslog(LOG_DEBUG, "%s(): no fpga specified for unit '%s'", __func__, unit_version());
        return FIRMWARE_NOT_SUPPORTED;
    }
    syslog(LOG_INFO, "%s(): start fpga update", __func__);
    TemporaryPayload payload(__func__, "/tmp/fpgafile");
    if (const std::int32_t failure = payload.take(name); failure != 0) {
        return failure;
    }
    if (!flash(__func__, id, primarySlot, payload.path())) {
        return FIRMWARE_UPDATE_PRIMARY;
    }
    syslog(LOG_INFO, "%s(): %s primary slot update is ok", __func__, fpga);
    if (!flash(__func__, id, secondarySlot, payload.path())) {
        return FIRMWARE_UPDATE_SECONDARY;
    }
    syslog(LOG_INFO, "%s(): %s secondary slot update is ok", __func__, fpga);
    return 0;
}
