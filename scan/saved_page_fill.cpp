#include "scan/saved_page_fill.h"

#include "acquire/http_request.h"
#include "scan/form_parser.h"
#include "scan/page_writer.h"
#include "scan/scan_session.h"

namespace qb {

FillResult FillSavedPage(const SavedPageFill& fill, KeyTable& keys, std::string& requestText) {
  requestText.clear();
  if (!LoadKeyDatabaseFile(fill.keys, keys)) return FillResult::kKeysUnreadable;
  FormScan scan;
  switch (LoadScanDocument(fill.page, scan.document)) {
    case LoadStatus::kLoaded: break;
    case LoadStatus::kCannotOpen: return FillResult::kPageUnreadable;
    case LoadStatus::kOutOfMemory: return FillResult::kOutOfMemory;
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
