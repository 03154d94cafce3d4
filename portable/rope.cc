#include "portable/rope.h"

#include <algorithm>

Buffer& operator<<(Buffer& destination, ConstBuffer& source) {
  unsigned long count = std::min(source.Length(), destination.Length());
  static_cast<ConstData const&>(source) >> destination;
  source.begin += count;
  destination.begin += count;
  return destination;
}

Buffer& operator<<(Buffer& destination, ConstData source) {
  ConstBuffer cursor(source);
  return destination << cursor;
}

unsigned long TotalLength(ConstDataRopeReference rope) {
  unsigned long total = 0;
  for (ConstData piece : rope) total += piece.Length();
  return total;
}

std::string MakeString(ConstDataRopeReference rope) {
  std::string text;
  text.reserve(TotalLength(rope));
  for (ConstData piece : rope) {
    if (!piece.IsEmpty()) text.append(reinterpret_cast<char const*>(piece.begin), piece.Length());
  }
  return text;
}

Data operator<<(Data destination, ConstDataRopeReference rope) {
  for (ConstData piece : rope) destination = destination << piece;
  return destination;
}

Buffer& operator<<(Buffer& destination, ConstDataRopeReference rope) {
  static_cast<Data&>(destination) = static_cast<Data>(destination) << rope;
  return destination;
}
