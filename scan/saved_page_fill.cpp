#include "scan/saved_page_fill.h"

#include "acquire/http_request.h"
#include "keys/key_file.h"
#include "scan/form_parser.h"
#include "scan/page_writer.h"
#include "scan/scan_session.h"

namespace qb {

FillResult FillSavedPage(const SavedPageFill& fill, KeyTable& keys, std::string& requestText) {
  requestText.clear();
  if (!LoadDatabase(fill.keys, keys).loaded()) return FillResult::kKeysUnreadable;
  FormScan scan;
  switch (LoadScanDocument(fill.page, scan.document)) {
    case DocumentLoadStatus::kLoaded: break;
    case DocumentLoadStatus::kCannotOpen: return FillResult::kPageUnreadable;
    case DocumentLoadStatus::kOutOfMemory: return FillResult::kOutOfMemory;
  }
  ScanSession session(keys, fill.options, false, fill.directPost);
  session.currentKey = fill.currentKey;
  session.host = SplitUrl(fill.address).host;
  ParseFormPage(scan, session.host);
  if (scan.forms.empty()) return FillResult::kNoForm;
  CheckRadioGroups(scan, session);
  if (!WriteFilledPage(fill.out, scan, session)) return FillResult::kNotWritten;
  if (fill.directPost) requestText = std::move(session.requestText);
  return FillResult::kFilled;
}

}  // namespace qb
