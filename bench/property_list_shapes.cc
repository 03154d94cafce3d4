#include "bench/property_list_shapes.h"

#include <cstdint>
#include <iterator>
#include <random>

namespace {

constexpr char const* kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n";
constexpr char const* kFoot = "</plist>\n";

constexpr char const* kWords[] = {
    "Bundle", "Name",  "Version", "Identifier", "Display", "Path", "Label", "Program", "Arguments",
    "Keep",   "Alive", "Load",    "Info",       "Type",    "Role", "Size",  "Icon",    "File"};

// Text as applications and services write it: dictionaries in dictionaries, many keys of few
// names, mostly short strings, and now and then each other kind of value.
class Source {
 public:
  static std::string Make(std::size_t size) {
    Source source;
    source.text_ = std::string(kHead) + "<array>\n";
    while (source.text_.size() < size) source.AddDictionary(4);
    return source.text_ + "</array>\n" + kFoot;
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

// One element after the other, in a container: `kMake` is given a random number and how many there
// were before.
template <std::string (*kMake)(std::uint64_t random, std::uint64_t number)>
std::string Flat(std::size_t size, std::string const& container) {
  std::mt19937_64 random(20010101);
  std::string text = kHead + ('<' + container + ">\n");
  for (std::uint64_t number = 0; text.size() < size; ++number) text += kMake(random(), number);
  return text + "</" + container + ">\n" + kFoot;
}
template <auto kMake>
std::string Array(std::size_t size) {
  return Flat<kMake>(size, "array");
}
template <auto kMake>
std::string Dictionary(std::size_t size) {
  return Flat<kMake>(size, "dict");
}

std::string Element(std::string const& name, std::string const& content) {
  return '<' + name + '>' + content + "</" + name + '>';
}

std::string Integer(std::uint64_t random, std::uint64_t) {
  return Element("integer", std::to_string(random >> 33));
}
std::string SmallInteger(std::uint64_t random, std::uint64_t) {
  return Element("integer", std::to_string(random % 100));
}
std::string Real(std::uint64_t random, std::uint64_t) {
  return Element("real", std::to_string(static_cast<double>(random >> 20) / 1e6));
}
std::string ShortReal(std::uint64_t random, std::uint64_t) {
  return Element("real", std::to_string(100 + random % 900));
}
std::string Date(std::uint64_t random, std::uint64_t) {
  auto const two = [&](std::uint64_t from, std::uint64_t count) {
    std::string const digits = std::to_string(100 + from + random % count);
    random /= count;
    return digits.substr(1);
  };
  return Element("date", "20" + two(10, 20) + '-' + two(1, 12) + '-' + two(1, 28) + 'T' +
                             two(0, 24) + ':' + two(0, 60) + ':' + two(0, 60) + 'Z');
}
std::string Boolean(std::uint64_t random, std::uint64_t) {
  return random % 2 == 0 ? "<true/>" : "<false/>";
}
std::string ShortString(std::uint64_t, std::uint64_t number) {
  return Element("string", std::to_string(100'000 + number));
}
std::string LongString(std::uint64_t, std::uint64_t number) {
  return Element("string", std::to_string(number) + std::string(50'000, 'x'));
}
std::string Data(std::uint64_t, std::uint64_t number) {
  return Element("data", std::to_string(10'000'000 + number) + "AAECAwQFBgc=");
}
std::string KeyAndTrue(std::uint64_t, std::uint64_t number) {
  return Element("key", std::to_string(100'000 + number)) + "<true/>";
}
std::string KeyAndInteger(std::uint64_t random, std::uint64_t number) {
  return Element("key", "key" + std::to_string(100'000 + number)) + Integer(random, number);
}
std::string KeyAndString(std::uint64_t, std::uint64_t number) {
  std::string const digits = std::to_string(100'000 + number);
  return Element("key", "key" + digits) + Element("string", "value " + digits);
}
std::string SmallArray(std::uint64_t random, std::uint64_t number) {
  return Element("array", Integer(random, number) + Boolean(random, number));
}
std::string Record(std::uint64_t random, std::uint64_t number) {
  std::string const digits = std::to_string(100'000 + number);
  return Element("dict", "<key>Name</key>" + Element("string", "item " + digits) +
                             "<key>Path</key>" + Element("string", "/usr/lib/" + digits) +
                             "<key>Size</key>" + Integer(random, number) + "<key>Visible</key>" +
                             Boolean(random, number));
}
std::string Deep(std::uint64_t, std::uint64_t) {
  std::string text;
  for (int i = 0; i < 200; ++i) text += "<array>";
  text += "<true/>";
  for (int i = 0; i < 200; ++i) text += "</array>";
  return text;
}

}  // namespace

std::vector<PropertyListShape> const& PropertyListShapes() {
  static std::vector<PropertyListShape> const shapes = {
      {"Settings", Source::Make},
      {"Records", Array<Record>},
      {"Integers", Array<Integer>},
      {"SmallIntegers", Array<SmallInteger>},
      {"Reals", Array<Real>},
      {"ShortReals", Array<ShortReal>},
      {"Dates", Array<Date>},
      {"Booleans", Array<Boolean>},
      {"ShortStrings", Array<ShortString>},
      {"LongStrings", Array<LongString>},
      {"Data", Array<Data>},
      {"SmallArrays", Array<SmallArray>},
      {"DeepArrays", Array<Deep>},
      {"KeysAndTrue", Dictionary<KeyAndTrue>},
      {"KeysAndIntegers", Dictionary<KeyAndInteger>},
      {"KeysAndStrings", Dictionary<KeyAndString>},
  };
  return shapes;
}
