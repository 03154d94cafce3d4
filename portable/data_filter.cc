#include "portable/data_filter.h"

void DataFilter::Flush(Buffer&) {}
bool DataFilter::Flushed() const { return true; }

void DataFilter::operator()(ConstBuffer& input, Data output) {
  if (input.IsEmpty() || output.IsEmpty()) return;
  BufferMaster master(output);
  (*this)(input, master.Cursor());
}

void DataFilter::operator()(ConstData input, Buffer& output) {
  if (input.IsEmpty() || output.IsEmpty()) return;
  ConstBufferMaster master(input);
  (*this)(master.Cursor(), output);
}

void DataFilter::operator()(ConstData input, Data output) {
  if (input.IsEmpty() || output.IsEmpty()) return;
  ConstBufferMaster source(input);
  BufferMaster destination(output);
  (*this)(source.Cursor(), destination.Cursor());
}
