// The box of the option "Show number of Forms and Fields": how many forms a page
// kept, the slots of each (its FORM tag included) and its scripts.
#pragma once

#include <string>

#include "scan/form_parser.h"

namespace qb {

std::string FormStatisticsText(const FormScan& scan);

}  // namespace qb
