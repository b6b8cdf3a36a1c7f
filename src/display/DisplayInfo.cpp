#include "display/DisplayInfo.h"

#include "base/JsonRecord.h"

namespace quillmar {

std::string displaysAsJson(const std::vector<DisplayInfo>& displays) { return json::encode(displays); }

}  // namespace quillmar
