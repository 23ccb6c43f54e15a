// What the record model costs: the parts of a request that are neither pixels nor network.

#include <string>

#include <benchmark/benchmark.h>

#include "zBoot.h"
#include "zBuffer.h"
#include "zRecord.h"
#include "zStringID.h"
#include "zXML.h"
#include "zXMLRPC.h"

namespace {

constexpr unsigned int kAllOptions = 255;

constexpr char kCall[] =
    "<?xml version=\"1.0\"?><methodCall><methodName>Snapshot</methodName><params><param><value><struct>"
    "<member><name>quality</name><value><string>high</string></value></member>"
    "<member><name>crop_left</name><value><int>10</int></value></member>"
    "<member><name>crop_top</name><value><int>20</int></value></member>"
    "<member><name>crop_right</name><value><int>30</int></value></member>"
    "<member><name>crop_bottom</name><value><int>40</int></value></member>"
    "</struct></value></param></params></methodCall>";

/// A record of ten variables, as a reply has.
void fill(zRecord& record) {
    for (int i = 0; i < 10; ++i)
        record.SetInt32(("bench_" + std::to_string(i)).c_str(), i * 1000);
}

void BM_LookupById(benchmark::State& state) {
    zRecord record;
    fill(record);
    const auto id = static_cast<unsigned int>(zStringID::ID("bench_9"));
    for (auto _ : state)
        benchmark::DoNotOptimize(record.AsInt32(id, 0));
}
BENCHMARK(BM_LookupById);

void BM_LookupByName(benchmark::State& state) {
    zRecord record;
    fill(record);
    for (auto _ : state)
        benchmark::DoNotOptimize(record.AsInt32("bench_9", 0));
}
BENCHMARK(BM_LookupByName);

void BM_SetExisting(benchmark::State& state) {
    zRecord record;
    fill(record);
    const auto id = static_cast<unsigned int>(zStringID::ID("bench_9"));
    for (int value = 0; auto _ : state)
        benchmark::DoNotOptimize(record.SetInt32(id, ++value));
}
BENCHMARK(BM_SetExisting);

void BM_ParseCall(benchmark::State& state) {
    zRecord record;
    for (auto _ : state) {
        record.MakeEmpty();
        benchmark::DoNotOptimize(zXML::ParseBuffer(kAllOptions, &record, kCall, -1));
    }
}
BENCHMARK(BM_ParseCall);

void BM_ReadParameters(benchmark::State& state) {
    zRecord record;
    zXML::ParseBuffer(kAllOptions, &record, kCall, -1);
    for (auto _ : state) {
        zRecord parameters;
        benchmark::DoNotOptimize(zXMLRPC(record).GetStructParam(0, parameters));
    }
}
BENCHMARK(BM_ReadParameters);

void BM_WriteReply(benchmark::State& state) {
    zRecord record("response");
    fill(record);
    for (auto _ : state) {
        zBuffer text;
        benchmark::DoNotOptimize(zXML::RecordToBuffer(&text, record, kAllOptions, false, false));
    }
}
BENCHMARK(BM_WriteReply);

} // namespace

int main(int argc, char** argv) {
    zBoot::Startup();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    zBoot::Shutdown();
    return 0;
}
