// CSS for new fonts.
#pragma once

#include <string>
#include <string_view>

#include "command/font/font_file.h"
#include "command/font/subset_plan.h"

namespace ulm::tools {

// Returns a @font-face rule for a new font.
//   source    the font that it was made of, for weight, style and width
//   family    its family name in UTF-8
//   fontName  the file of the new font
//   cssName   the file of the rule, to which the rule's URL is relative; "-" for the current folder
//   woff2     the form of the new font
std::string fontFaceRule(const FontFile& source, const SubsetPlan& plan, std::string_view family,
                         const std::string& fontName, const std::string& cssName, bool woff2);

}  // namespace ulm::tools
