// The page that compares a new font with its source.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "command/font/font_file.h"
#include "command/font/subset_plan.h"

namespace ulm::tools {

// Returns an HTML page that shows the plan's text in both fonts, which are embedded. The characters
// of a list are shown separately. `subset` is the new font or its WOFF2 file, `subsetName` the name
// of its file, `layout` the result of layoutInUse. Throws std::runtime_error
// if the tables of the face overlap so much that it cannot be copied out of its collection.
// The page's script draws in both fonts what the page shows, and sets data attributes of the root:
//   subset, source  "loaded" or "refused"
//   drawing         "equal" or "different", by the widths and pixels of what is shown
//   differing       the words or characters that differ, up to 100, separated by |
//   characters      "equal" or "different", by the characters drawn one by one
std::string previewPage(const FontFile& font, std::string_view subset,
                        const std::string& subsetName, const SubsetPlan& plan,
                        const std::vector<std::string>& layout);

}  // namespace ulm::tools
