#include "machine/directory_record.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <functional>

#include "machine/directory_records.h"

namespace machine {
namespace {

// A record's bytes are the number of its kind, its name and its values. A text is its length and
// bytes, where it is none that the record has anyway; a longer one is cut off. Numbers are 32 bits
// wide in the processor's order.
constexpr std::size_t kNumber = sizeof(std::uint32_t);

constexpr std::size_t kFirstBlock = 4 * 1024, kBlock = 64 * 1024;

// All pages at once, which costs a quarter of a fault for each. Where the kernel cannot, they come
// one by one.
void Populate([[maybe_unused]] char* bytes, [[maybe_unused]] std::size_t size) {
#ifdef MADV_POPULATE_WRITE
  auto const page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
  auto const start = (reinterpret_cast<std::uintptr_t>(bytes) + page - 1) & ~(page - 1);
  auto const end = (reinterpret_cast<std::uintptr_t>(bytes) + size) & ~(page - 1);
  if (start < end) ::madvise(reinterpret_cast<void*>(start), end - start, MADV_POPULATE_WRITE);
#endif
}

void PutNumber(std::uint32_t number, char*& to) {
  std::memcpy(to, &number, kNumber);
  to += kNumber;
}

// In place of a value's length.
constexpr std::uint32_t kOwnName = UINT32_MAX, kOwnType = kOwnName - 1, kOwnNode = kOwnName - 2;
constexpr std::size_t kLongest = kOwnNode - 1;

// The value's length, or what it stands for: nodes put the same text in both places.
std::uint32_t MarkOf(std::string_view value, DirectoryRecordView const& record) {
  auto const is = [value](std::string_view own) {
    return value.data() == own.data() && value.size() == own.size();
  };
  if (is(record.name)) return kOwnName;
  if (is(record.type)) return kOwnType;
  if (is(record.node)) return kOwnNode;
  return static_cast<std::uint32_t>(std::min(value.size(), kLongest));
}

std::size_t LengthOf(std::uint32_t mark) { return mark > kLongest ? 0 : mark; }

void PutText(std::string_view text, std::uint32_t mark, char*& to) {
  PutNumber(mark, to);
  to = std::copy_n(text.data(), LengthOf(mark), to);
}

// Of bytes that were put as above.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  std::uint32_t Number() {
    std::uint32_t number = 0;
    std::memcpy(&number, bytes_.data(), kNumber);
    bytes_.remove_prefix(kNumber);
    return number;
  }
  std::string_view Text(std::uint32_t length) {
    std::string_view const text(bytes_.data(), length);
    bytes_.remove_prefix(length);
    return text;
  }
  std::string_view Name() { return Text(Number()); }
  bool is_at_end() const { return bytes_.empty(); }

 private:
  std::string_view bytes_;
};

}  // namespace

DirectoryAttribute const* DirectoryRecord::Find(std::string_view attribute) const {
  auto const found =
      std::ranges::find_if(attributes, [attribute](DirectoryAttribute const& candidate) {
        return EqualIgnoringCase(candidate.name, attribute);
      });
  return found == attributes.end() ? nullptr : &*found;
}

void DirectoryRecord::Add(std::string_view attribute, std::string value) {
  auto* const known = const_cast<DirectoryAttribute*>(Find(attribute));
  if (known != nullptr) return known->values.push_back(std::move(value));
  attributes.push_back({std::string(attribute), {}});
  attributes.back().values.push_back(std::move(value));
}

DirectoryRecordView ViewOf(DirectoryRecord const& record, DirectoryRecordParts& parts) {
  parts.Clear();
  for (DirectoryAttribute const& attribute : record.attributes) {
    parts.attributes.push_back({attribute.name, attribute.values.size()});
    parts.values.insert(parts.values.end(), attribute.values.begin(), attribute.values.end());
  }
  return {record.type, record.name, record.node, parts.attributes, parts.values};
}

DirectoryRecords::DirectoryRecords(std::vector<DirectoryRecord> const& records) {
  for (DirectoryRecord const& record : records) Add(record);
}

void DirectoryRecords::Add(DirectoryRecord const& record) {
  DirectoryRecordParts parts;
  Add(ViewOf(record, parts));
}

void DirectoryRecords::Add(DirectoryRecordView const& record) {
  auto const name_length = static_cast<std::uint32_t>(std::min(record.name.size(), kLongest));
  std::size_t size = 2 * kNumber + name_length;
  marks_.clear();
  for (std::string_view const value : record.values) {
    marks_.push_back(MarkOf(value, record));
    size += kNumber + LengthOf(marks_.back());
  }
  char* const start = Reserve(size);
  char* to = start;
  PutNumber(KindOf(record), to);
  PutText(record.name, name_length, to);
  for (std::size_t i = 0; i < marks_.size(); ++i) PutText(record.values[i], marks_[i], to);
  records_.emplace_back(start, size);
}

bool DirectoryRecords::IsOfKind(DirectoryRecordView const& record, Kind const& kind) {
  if (record.form != nullptr && record.form == kind.form) return true;
  return record.type == kind.type && record.node == kind.node &&
         std::ranges::equal(record.attributes, kind.attributes);
}

// Like records mostly follow one another. Where they do not, a kind may be there more than once.
std::uint32_t DirectoryRecords::KindOf(DirectoryRecordView const& record) {
  constexpr std::size_t kNear = 4;
  std::size_t const last = kinds_.size() - std::min(kNear, kinds_.size());
  for (std::size_t i = kinds_.size(); i-- > last;) {
    if (IsOfKind(record, kinds_[i])) return static_cast<std::uint32_t>(i);
  }
  Kind& kind = kinds_.emplace_back();
  kind.form = record.form;
  kind.type = record.type;
  kind.node = record.node;
  for (auto const& attribute : record.attributes) kind.texts += attribute.name;
  std::string_view rest = kind.texts;
  for (auto const& [name, count] : record.attributes) {
    kind.attributes.push_back({rest.substr(0, name.size()), count});
    rest.remove_prefix(name.size());
  }
  return static_cast<std::uint32_t>(kinds_.size() - 1);
}

char* DirectoryRecords::Reserve(std::size_t size) {
  bool const fits = !blocks_.empty() && blocks_.back().size - blocks_.back().used >= size;
  if (!fits) {
    std::size_t const wanted = blocks_.empty() ? kFirstBlock : kBlock;
    std::size_t const block_size = std::max(wanted, size);
    blocks_.push_back({std::make_unique_for_overwrite<char[]>(block_size), 0, block_size});
    if (block_size == kBlock) Populate(blocks_.back().bytes.get(), block_size);
  }
  Block& block = blocks_.back();
  char* const reserved = block.bytes.get() + block.used;
  block.used += size;
  return reserved;
}

void DirectoryRecords::Forget(std::size_t index) {
  if (index >= size()) return blocks_.clear();
  char const* const needed = records_[index].data();
  auto const has_needed = [needed](Block const& block) {
    return std::less_equal<>()(block.bytes.get(), needed) &&
           std::less<>()(needed, block.bytes.get() + block.used);
  };
  while (!has_needed(blocks_.front())) blocks_.pop_front();
}

std::string_view DirectoryRecords::NameAt(std::size_t index) const {
  Reader reader(records_[index]);
  reader.Number();
  return reader.Name();
}

DirectoryRecordView DirectoryRecords::ViewAt(std::size_t index,
                                             std::vector<std::string_view>& values) const {
  Reader reader(records_[index]);
  Kind const& kind = kinds_[reader.Number()];
  std::string_view const name = reader.Name();
  values.clear();
  while (!reader.is_at_end()) {
    std::uint32_t const mark = reader.Number();
    values.push_back(mark == kOwnName   ? name
                     : mark == kOwnType ? std::string_view(kind.type)
                     : mark == kOwnNode ? std::string_view(kind.node)
                                        : reader.Text(mark));
  }
  return {kind.type, name, kind.node, kind.attributes, values};
}

DirectoryRecord DirectoryRecords::operator[](std::size_t index) const {
  std::vector<std::string_view> values;
  DirectoryRecordView const view = ViewAt(index, values);
  DirectoryRecord record = {
      std::string(view.type), std::string(view.name), std::string(view.node), {}};
  auto value = values.begin();
  for (auto const& [name, count] : view.attributes) {
    auto const end = value + static_cast<std::ptrdiff_t>(count);
    record.attributes.push_back({std::string(name), {value, end}});
    value = end;
  }
  return record;
}

}  // namespace machine
