// Reading property lists of many shapes into objects, and the same by libplist. Speeds are of the
// file's bytes, in time of the processor.
#include <CoreFoundation/CoreFoundation.h>
#include <benchmark/benchmark.h>
#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>

#include "bench/property_list_shapes.h"

namespace {

enum class Form { kXml, kBinary };

std::string const& Xml(PropertyListShape const& shape) {
  static std::map<std::string, std::string> texts;
  std::string& text = texts[shape.name];
  if (text.empty()) text = shape.make_xml(8'000'000);
  return text;
}

CFPropertyListRef ReadByUs(CFDataRef data) {
  return CFPropertyListCreateWithData(nullptr, data, 0, nullptr, nullptr);
}

CFDataRef MakeData(std::string const& bytes) {
  return CFDataCreate(nullptr, reinterpret_cast<UInt8 const*>(bytes.data()),
                      static_cast<CFIndex>(bytes.size()));
}

// Converted by the other library, so that neither reads what only it would write.
std::string const& Binary(PropertyListShape const& shape) {
  static std::map<std::string, std::string> converted;
  std::string& bytes = converted[shape.name];
  if (bytes.empty()) {
    plist_t root = nullptr;
    plist_from_xml(Xml(shape).data(), static_cast<std::uint32_t>(Xml(shape).size()), &root);
    char* start = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(root, &start, &size);
    bytes.assign(start, size);
    std::free(start);
    plist_free(root);
  }
  return bytes;
}

std::string const& BytesOf(PropertyListShape const& shape, Form form) {
  return form == Form::kXml ? Xml(shape) : Binary(shape);
}

// What is read is given back outside the time that counts, for both.
template <typename Read, typename GiveBack>
void Measure(benchmark::State& state, std::size_t size, Read&& read, GiveBack&& give_back) {
  for (auto _ : state) {
    auto const root = read();
    state.PauseTiming();
    if (root == nullptr) {
      state.SkipWithError("not read");
      break;
    }
    give_back(root);
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
}

void MeasureUs(benchmark::State& state, PropertyListShape shape, Form form) {
  std::string const& bytes = BytesOf(shape, form);
  CFDataRef const data = MakeData(bytes);
  Measure(
      state, bytes.size(), [&] { return ReadByUs(data); }, CFRelease);
  CFRelease(data);
}

void MeasureLibplist(benchmark::State& state, PropertyListShape shape, Form form) {
  std::string const& bytes = BytesOf(shape, form);
  auto const read = [&] {
    plist_t root = nullptr;
    auto* const read_form = form == Form::kXml ? plist_from_xml : plist_from_bin;
    read_form(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
    return root;
  };
  Measure(state, bytes.size(), read, plist_free);
}

}  // namespace

int main(int argc, char** argv) {
  for (PropertyListShape const& shape : PropertyListShapes()) {
    for (Form const form : {Form::kXml, Form::kBinary}) {
      std::string const name = shape.name + std::string(form == Form::kXml ? "/Xml" : "/Binary");
      benchmark::RegisterBenchmark((name + "/Us").c_str(), MeasureUs, shape, form)
          ->Unit(benchmark::kMillisecond);
      benchmark::RegisterBenchmark((name + "/Libplist").c_str(), MeasureLibplist, shape, form)
          ->Unit(benchmark::kMillisecond);
    }
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
