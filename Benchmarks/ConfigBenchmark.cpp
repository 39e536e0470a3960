// SPDX-License-Identifier: MIT
/// @file ConfigBenchmark.cpp
/// R&D parameters next to bare atomics in shared memory, and configuration tags next to the bare database below them.
#include "AaConfigRad.h"
#include "AaConfigTag.h"
#include "AaMem.h"
#include "RunOnNode.hpp"

#include <array>
#include <atomic>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstdlib>
#include <lmdb.h>
#include <new>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>

namespace {

constexpr std::uint16_t domain = 0x30;
constexpr TAaConfigRadId firstId = domain << 16;
constexpr std::size_t parameters = 8; // read or set one after the other, so that the loop around weighs little
constexpr const char* tagName = "bench.some.tag";

void declareParameters()
{
    AaConfigRadSetMaxTagCount(domain, firstId + parameters);
    for (TAaConfigRadId id = firstId; id < firstId + parameters; ++id) {
        AaConfigRadSetDefault(id, "Bench", id);
    }
}

/// Atomics in memory that is shared with other processes.
class SharedAtomics {
public:
    using Values = std::array<std::atomic<std::uint32_t>, parameters>;

    SharedAtomics() : m_memory(mmap(nullptr, sizeof(Values), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
    {
        if (m_memory == MAP_FAILED) {
            throw std::bad_alloc();
        }
        m_values = new (m_memory) Values{};
    }
    ~SharedAtomics() { munmap(m_memory, sizeof(Values)); }
    SharedAtomics(const SharedAtomics&) = delete;
    SharedAtomics& operator=(const SharedAtomics&) = delete;

    Values& operator*() const { return *m_values; }

private:
    void* m_memory;
    Values* m_values;
};

void countItems(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(parameters));
}

void readParameter(benchmark::State& state)
{
    AaConfigRadRegisterDomain(domain, "Bench", declareParameters);
    for (auto _ : state) {
        benchmark::DoNotOptimize(AaConfigRadGetValue(firstId));
    }
}
BENCHMARK(readParameter)->Name("rad/read/dorn");

void readAtomic(benchmark::State& state)
{
    const SharedAtomics atomics;
    const std::atomic<std::uint32_t>& value = (*atomics)[0];
    for (auto _ : state) {
        benchmark::DoNotOptimize(value.load(std::memory_order_relaxed));
    }
}
BENCHMARK(readAtomic)->Name("rad/read/atomic");

void readParameters(benchmark::State& state)
{
    AaConfigRadRegisterDomain(domain, "Bench", declareParameters);
    for (auto _ : state) {
        for (TAaConfigRadId id = firstId; id < firstId + parameters; ++id) {
            benchmark::DoNotOptimize(AaConfigRadGetValue(id));
        }
    }
    countItems(state);
}
BENCHMARK(readParameters)->Name("rad/readEight/dorn");

void readAtomics(benchmark::State& state)
{
    const SharedAtomics atomics;
    for (auto _ : state) {
        for (const std::atomic<std::uint32_t>& value : *atomics) {
            benchmark::DoNotOptimize(value.load(std::memory_order_relaxed));
        }
    }
    countItems(state);
}
BENCHMARK(readAtomics)->Name("rad/readEight/atomic");

void setParameters(benchmark::State& state)
{
    AaConfigRadRegisterDomain(domain, "Bench", declareParameters);
    std::uint32_t value = 0;
    for (auto _ : state) {
        ++value;
        for (TAaConfigRadId id = firstId; id < firstId + parameters; ++id) {
            AaConfigRadSetValue(id, value);
        }
    }
    countItems(state);
}
BENCHMARK(setParameters)->Name("rad/set/dorn");

void setAtomics(benchmark::State& state)
{
    const SharedAtomics atomics;
    std::uint32_t next = 0;
    for (auto _ : state) {
        ++next;
        for (std::atomic<std::uint32_t>& value : *atomics) {
            value.store(next, std::memory_order_seq_cst);
        }
    }
    countItems(state);
}
BENCHMARK(setAtomics)->Name("rad/set/atomic");

void setTag(benchmark::State& state)
{
    std::uint32_t value = 0;
    for (auto _ : state) {
        AaConfigTagSetU32(tagName, ++value);
    }
}
BENCHMARK(setTag)->Name("tag/set/dorn");

void getTag(benchmark::State& state)
{
    AaConfigTagSetU32(tagName, 7);
    for (auto _ : state) {
        void* value = nullptr;
        std::uint32_t length = 0;
        AaConfigTagGet(tagName, &value, &length);
        benchmark::DoNotOptimize(value);
        AaMemUnRef(value);
    }
}
BENCHMARK(getTag)->Name("tag/get/dorn");

void require(int result)
{
    if (result != MDB_SUCCESS) {
        throw std::runtime_error(mdb_strerror(result));
    }
}

/// A database of its own with one table.
class BareDatabase {
public:
    BareDatabase()
    {
        const std::string path = std::string(std::getenv("DORN_RUN_DIR")) + "/bare";
        mkdir(path.c_str(), 0700);
        require(mdb_env_create(&m_environment));
        mdb_env_set_mapsize(m_environment, std::size_t{1} << 24);
        mdb_env_set_maxdbs(m_environment, 1);
        require(mdb_env_open(m_environment, path.c_str(), MDB_NOSYNC | MDB_NOMETASYNC | MDB_NOTLS, 0600));
        MDB_txn* transaction = nullptr;
        require(mdb_txn_begin(m_environment, nullptr, 0, &transaction));
        require(mdb_dbi_open(transaction, "tags", MDB_CREATE, &m_table));
        require(mdb_txn_commit(transaction));
    }
    ~BareDatabase() { mdb_env_close(m_environment); }
    BareDatabase(const BareDatabase&) = delete;
    BareDatabase& operator=(const BareDatabase&) = delete;

    void set(std::uint32_t number)
    {
        MDB_txn* transaction = nullptr;
        require(mdb_txn_begin(m_environment, nullptr, 0, &transaction));
        MDB_val value{sizeof number, &number};
        require(mdb_put(transaction, m_table, &m_key, &value, 0));
        require(mdb_txn_commit(transaction));
    }
    std::uint32_t get()
    {
        MDB_txn* transaction = nullptr;
        require(mdb_txn_begin(m_environment, nullptr, MDB_RDONLY, &transaction));
        MDB_val value{};
        require(mdb_get(transaction, m_table, &m_key, &value));
        const std::uint32_t number = *static_cast<const std::uint32_t*>(value.mv_data);
        mdb_txn_abort(transaction);
        return number;
    }

private:
    MDB_env* m_environment = nullptr;
    MDB_dbi m_table = 0;
    std::string m_name = tagName;
    MDB_val m_key{m_name.size(), m_name.data()};
};

void setInBareDatabase(benchmark::State& state)
{
    BareDatabase database;
    std::uint32_t value = 0;
    for (auto _ : state) {
        database.set(++value);
    }
}
BENCHMARK(setInBareDatabase)->Name("tag/set/lmdb");

void getFromBareDatabase(benchmark::State& state)
{
    BareDatabase database;
    database.set(7);
    for (auto _ : state) {
        benchmark::DoNotOptimize(database.get());
    }
}
BENCHMARK(getFromBareDatabase)->Name("tag/get/lmdb");

} // namespace

int main(int argc, char** argv)
{
    return dorn::benchmarks::runOnNode(argc, argv, {}, [](const auto&) { AaConfigEarlyStartup(); });
}
