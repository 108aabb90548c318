#include <cstdlib>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>
#include <plist/plist.h>

#include "ZCommons/Data/ZCDObject.h"
#include "foundation/archive/ArchiveReader.h"
#include "foundation/archive/ArchiveWriter.h"

// A record of ten properties, archived, beside the same properties as a dictionary of the
// property-list library.

using foundation::ArchiveReader;
using foundation::ArchiveWriter;
using foundation::PropertyListFormat;

namespace {

class Record : public ZCDObject {
 public:
  std::string name = "A name of some length";
  std::string city = "Hamburg";
  std::string street = "Am Sandtorkai 1";
  std::string note = "called twice, wants to be called again";
  std::int32_t age = 44;
  std::int32_t visits = 100'000;
  std::int64_t size = 5'000'000'000;
  std::uint16_t port = 8080;
  double latitude = 53.5438;
  double longitude = 9.9947;
  ZCD_PROPERTIES(Record, ZCDObject, name, city, street, note, age, visits, size, port, latitude,
                 longitude);
};

PropertyListFormat format(const benchmark::State& state) {
  return state.range(0) == 0 ? PropertyListFormat::Binary : PropertyListFormat::XML;
}

void archiveRecord(benchmark::State& state) {
  const auto record = std::make_shared<Record>();
  std::size_t size = 0;
  for (auto _ : state) size = ArchiveWriter::archivedData(record, format(state))->size();
  state.counters["bytes"] = static_cast<double>(size);
}

void plistDictionary(benchmark::State& state) {
  const Record record;
  std::uint32_t size = 0;
  for (auto _ : state) {
    plist_t dictionary = plist_new_dict();
    plist_dict_set_item(dictionary, "name", plist_new_string(record.name.c_str()));
    plist_dict_set_item(dictionary, "city", plist_new_string(record.city.c_str()));
    plist_dict_set_item(dictionary, "street", plist_new_string(record.street.c_str()));
    plist_dict_set_item(dictionary, "note", plist_new_string(record.note.c_str()));
    plist_dict_set_item(dictionary, "age", plist_new_uint(static_cast<std::uint64_t>(record.age)));
    plist_dict_set_item(dictionary, "visits",
                        plist_new_uint(static_cast<std::uint64_t>(record.visits)));
    plist_dict_set_item(dictionary, "size",
                        plist_new_uint(static_cast<std::uint64_t>(record.size)));
    plist_dict_set_item(dictionary, "port", plist_new_uint(record.port));
    plist_dict_set_item(dictionary, "latitude", plist_new_real(record.latitude));
    plist_dict_set_item(dictionary, "longitude", plist_new_real(record.longitude));
    char* bytes = nullptr;
    if (format(state) == PropertyListFormat::XML) {
      plist_to_xml(dictionary, &bytes, &size);
    } else {
      plist_to_bin(dictionary, &bytes, &size);
    }
    benchmark::DoNotOptimize(bytes);
    std::free(bytes);
    plist_free(dictionary);
  }
  state.counters["bytes"] = static_cast<double>(size);
}

void unarchiveRecord(benchmark::State& state) {
  const auto data = ArchiveWriter::archivedData(std::make_shared<Record>(), format(state));
  for (auto _ : state) {
    benchmark::DoNotOptimize(ArchiveReader::unarchivedObjectOfClass<Record>(*data));
  }
}

void plistParse(benchmark::State& state) {
  const auto data = ArchiveWriter::archivedData(std::make_shared<Record>(), format(state));
  for (auto _ : state) {
    plist_t list = nullptr;
    plist_from_memory(reinterpret_cast<const char*>(data->data()),
                      static_cast<std::uint32_t>(data->size()), &list);
    plist_free(list);
  }
}

void copyRecord(benchmark::State& state) {
  const Record record;
  for (auto _ : state) benchmark::DoNotOptimize(record.copy());
}

BENCHMARK(archiveRecord)->ArgName("xml")->Arg(0)->Arg(1);
BENCHMARK(plistDictionary)->ArgName("xml")->Arg(0)->Arg(1);
BENCHMARK(unarchiveRecord)->ArgName("xml")->Arg(0)->Arg(1);
BENCHMARK(plistParse)->ArgName("xml")->Arg(0)->Arg(1);
BENCHMARK(copyRecord);

}  // namespace
