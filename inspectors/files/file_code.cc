#include "inspectors/files/file_code.h"

#include "evaluator/plugin/exceptions.h"
#include "frame/combine.h"
#include "frame/registration.h"

namespace {

std::uint32_t CodeOf(unsigned char const* name, unsigned long length) {
  if (length != 4) throw NoSuchObject();
  return Combine(name[0], name[1], name[2], name[3]);
}

}  // namespace

file_signature file_signature_of(unsigned char const* name, unsigned long length) {
  return {CodeOf(name, length)};
}

file_type file_type_of(unsigned char const* name, unsigned long length) {
  return {CodeOf(name, length)};
}

boolean operator==(file_signature const& left, file_signature const& right) {
  return left.code == right.code;
}

boolean operator==(file_type const& left, file_type const& right) {
  return left.code == right.code;
}

namespace {

Type<file_signature, kNoFingerprinting> signature_type;
NamedGlobalProperty<file_signature> signature("file signature", "file signatures",
                                              file_signature_of, nullptr);
RelationEqual<file_signature, file_signature> signature_equal(nullptr);
Type<file_type, kNoFingerprinting> type_type;
NamedGlobalProperty<file_type> type("file type", "file types", file_type_of, nullptr);
RelationEqual<file_type, file_type> type_equal(nullptr);

}  // namespace
