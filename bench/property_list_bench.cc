// Reading property lists into objects, and the same by libplist. Speeds are of the file's bytes, in
// time of the processor.
#include <CoreFoundation/CoreFoundation.h>
#include <benchmark/benchmark.h>
#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

namespace {

constexpr char const* kWords[] = {
    "Bundle", "Name",  "Version", "Identifier", "Display", "Path", "Label", "Program", "Arguments",
    "Keep",   "Alive", "Load",    "Info",       "Type",    "Role", "Size",  "Icon",    "File"};

// Text as applications and services write it: dictionaries in dictionaries, many keys of few
// names, mostly short strings, and now and then each other kind of value.
class Source {
 public:
  static std::string Make(std::size_t size) {
    Source source;
    source.text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<array>\n";
    while (source.text_.size() < size) source.AddDictionary(4);
    return source.text_ + "</array>\n</plist>\n";
  }

 private:
  std::size_t Below(std::size_t bound) { return random_() % bound; }

  std::string Words(std::size_t count, char const* separator) {
    std::string words;
    for (std::size_t i = 0; i < count; ++i) {
      words += (i == 0 ? "" : separator) + std::string(kWords[Below(std::size(kWords))]);
    }
    return words;
  }

  void Add(std::string const& element, std::string const& content) {
    text_ += '<' + element + '>' + content + "</" + element + ">\n";
  }

  void AddDictionary(int depth) {
    text_ += "<dict>\n";
    for (std::size_t count = 2 + Below(9); count > 0; --count) {
      text_.append(static_cast<std::size_t>(5 - depth), '\t');
      Add("key", "CF" + Words(2 + Below(2), ""));
      text_.append(static_cast<std::size_t>(5 - depth), '\t');
      AddValue(depth);
    }
    text_ += "</dict>\n";
  }

  void AddValue(int depth) {
    std::size_t const kind = Below(100);
    if (kind < 18 && depth > 0) {
      AddDictionary(depth - 1);
    } else if (kind < 65) {
      Add("string", Words(1 + Below(8), " "));
    } else if (kind < 69) {
      Add("string",
          "Gr\xC3\xB6\xC3\x9F"
          "e \xE6\x97\xA5\xE6\x9C\xAC &amp; " +
              Words(2, " "));
    } else if (kind < 82) {
      Add("integer", std::to_string(random_() >> Below(60)));
    } else if (kind < 91) {
      text_ += kind % 2 == 0 ? "<true/>\n" : "<false/>\n";
    } else if (kind < 94) {
      Add("real", std::to_string(static_cast<double>(random_()) / 1e15));
    } else if (kind < 97) {
      Add("date", "20" + std::to_string(10 + Below(20)) + "-11-21T10:20:30Z");
    } else {
      Add("data", "\nAAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8gISIjJCUmJygpKissLS4v\n");
    }
  }

  std::mt19937_64 random_{20010101};
  std::string text_;
};

std::string const& Xml() {
  static std::string const text = Source::Make(16'000'000);
  return text;
}

// Converted by the other library, so that neither reads what only it would write.
std::string const& Binary() {
  static std::string const bytes = [] {
    plist_t root = nullptr;
    plist_from_xml(Xml().data(), static_cast<std::uint32_t>(Xml().size()), &root);
    char* start = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(root, &start, &size);
    std::string const converted(start, size);
    std::free(start);
    plist_free(root);
    return converted;
  }();
  return bytes;
}

// What is read is given back outside the time that counts, for both.
template <auto kSource>
void ReadByUs(benchmark::State& state) {
  std::string const& bytes = kSource();
  CFDataRef const data = CFDataCreate(nullptr, reinterpret_cast<UInt8 const*>(bytes.data()),
                                      static_cast<CFIndex>(bytes.size()));
  for (auto _ : state) {
    CFPropertyListRef const root = CFPropertyListCreateWithData(nullptr, data, 0, nullptr, nullptr);
    state.PauseTiming();
    if (root == nullptr) {
      state.SkipWithError("not read");
      break;
    }
    CFRelease(root);
    state.ResumeTiming();
  }
  CFRelease(data);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

template <auto kSource, auto kRead>
void ReadByLibplist(benchmark::State& state) {
  std::string const& bytes = kSource();
  for (auto _ : state) {
    plist_t root = nullptr;
    kRead(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
    state.PauseTiming();
    if (root == nullptr) {
      state.SkipWithError("not read");
      break;
    }
    plist_free(root);
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

BENCHMARK(ReadByUs<Xml>)->Name("XmlByUs")->Unit(benchmark::kMillisecond);
BENCHMARK(ReadByLibplist<Xml, plist_from_xml>)
    ->Name("XmlByLibplist")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(ReadByUs<Binary>)->Name("BinaryByUs")->Unit(benchmark::kMillisecond);
BENCHMARK(ReadByLibplist<Binary, plist_from_bin>)
    ->Name("BinaryByLibplist")
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
