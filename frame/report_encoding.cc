#include "frame/report_encoding.h"

#include <algorithm>

#include "evaluator/plugin/entry_points.h"

namespace {

constexpr char kReportEncodingSetting[] = "_KPXClient_DeploymentEncoding_IANAName";
constexpr std::size_t kLongestPascalString = 255;

}  // namespace

std::string GetReportEncodingNameFromSettingStore(
    SettingStore<CFPreferenceSettingIterator>& store) {
  CFPreferenceSettingIterator const item =
      store.FindItem(ClientSettingSection(), ConstData(kReportEncodingSetting));
  return item == store.End() ? std::string() : MakeString(item.Value());
}

std::string GetReportEncodingNameFromInspector() {
  auto* const settings = dynamic_cast<InspectorSettingsContext*>(Get_Generic_Inspector_Context());
  if (settings == nullptr) return {};
  return GetReportEncodingNameFromSettingStore(settings->GetInspectorSettingStore());
}

TextEncoding GetReportEncodingFromName(std::string const& name) {
  if (name.empty() || name.size() > kLongestPascalString) return kDefaultReportEncoding;
  Str255 pascal_name;
  pascal_name[0] = static_cast<unsigned char>(name.size());
  std::copy(name.begin(), name.end(), pascal_name + 1);
  TextEncoding encoding = kDefaultReportEncoding;
  OSStatus const status = TECGetTextEncodingFromInternetName(pascal_name, &encoding);
  return status == noErr ? encoding : kDefaultReportEncoding;
}

TextEncoding GetReportEncodingFromInspector() {
  return GetReportEncodingFromName(GetReportEncodingNameFromInspector());
}
