// The filled page: the page's valid forms with every field tag written afresh and
// filled from the keys, the page's own markup between the fields copied byte for
// byte. Fields are matched (and prompted, as the scan's options say) while they
// are written. Values are not HTML-escaped: a quote in a Description ends its
// attribute, as it always has.
#pragma once

#include <string>

#include "scan/form_parser.h"
#include "scan/scan_session.h"

namespace qb {

// Appended to the program's folder; every scan overwrites it.
constexpr char kFilledPageName[] = "\\QuellbarrowTemproaryFile.htm";
// Worded so although the file is being created.
constexpr char kCantCreatePageText[] = "Can't open file for reading";
constexpr char kCantWritePageText[] = "Can't write to file\n";
constexpr char kProgramMistakeText[] =
    "That is a mistake in program.\n"
    "Please report the internal error CODE-0 so that it can be corrected.";

// Option tags are rebuilt word by word; a longer run of bytes is cut into words
// of this length.
constexpr std::size_t kMaxOptionWordBytes = 260;

// The filled page of `scan`. In direct-post mode the first form's pairs go to
// session.requestText.
std::string FilledPage(FormScan& scan, ScanSession& session);

// FilledPage written to `path` (binary, replacing the file). When the file can't
// be created the user is told kCantCreatePageText and nothing is matched,
// prompted or written; a failed write is told too. False in both cases.
bool WriteFilledPage(const std::string& path, FormScan& scan, ScanSession& session);

// An OPTION tag's text without its `selected` words (also selected="..."),
// each word followed by one blank.
std::string RebuildOptionTag(std::string_view tag);
// Whether the page marks the option selected.
bool OptionTagSelected(std::string_view tag);

}  // namespace qb
