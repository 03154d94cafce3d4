#include "portable_inspectors/file_stream.h"

#include <CoreServices/CoreServices.h>

#include "evaluator/plugin/entry_points.h"
#include "portable_inspectors/machine_files.h"

FileStream::FileStream(file const& source) : path_(source.Path()) {
  if (path_.empty()) throw NoSuchObject();
  open_ =
      OrNoSuchObject(MachineFiles().OpenFork(path_, machine::Fork::kData, machine::Access::kRead));
}

std::size_t FileStream::Read(void* buffer, std::size_t size) {
  if (open_ == nullptr) return 0;
  Check_For_Inspector_Interruption();
  machine::Fact<std::size_t> const read = open_->ReadAt(offset_, buffer, size);
  if (!read) throw FileIOError(ConstData(path_), ioErr);
  offset_ += *read;
  return *read;
}
