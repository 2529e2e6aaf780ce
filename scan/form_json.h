// What the parser kept, as one JSON object: the output of the formdump tool,
// which other tools compare against. Text values are the kept bytes, each byte
// written as the character of the same code point; a missing text is null.
#pragma once

#include <string>

#include "scan/form_parser.h"

namespace qb {

std::string FormScanToJson(const FormScan& scan);

}  // namespace qb
