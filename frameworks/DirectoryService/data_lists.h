// What is in a list, for the calls that take one.
#pragma once

#include <DirectoryService/DirServicesUtils.h>

#include <string>
#include <string_view>
#include <vector>

std::string_view TextOf(tDataNode const& node);
std::vector<std::string> StringsOf(tDataList const& list);
// "/Local/Default" of the parts of a path.
std::string PathOf(tDataList const& list);

// Null when there is no memory.
tDataListPtr MakeDataList(std::vector<std::string> const& strings);
