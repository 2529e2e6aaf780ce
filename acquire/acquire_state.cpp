#include "acquire/acquire_state.h"

#include "base/app_state.h"

namespace qb {

const std::string& CurrentLinksFolder() {
  const std::string& folder = App().linksFolder;
  return folder.empty() ? App().dataHtmlDir : folder;
}

void SetCurrentLinksFolder(std::string folder) { App().linksFolder = std::move(folder); }

DownloadRequest& SharedDownloadRequest() {
  static DownloadRequest request;
  return request;
}

std::string& SharedRequestText() {
  static std::string text;
  return text;
}

DocumentRegistry ProgramRegistry() {
  const std::string& dir = App().programDir;
  return DocumentRegistry(dir + "\\" + kRegistryFileName, dir + "\\" + kRegistryTempName);
}

PrepareStatus PreparePageDownload(std::string_view url) {
  const std::string_view folder = ChooseDownloadFolder(CurrentLinksFolder(), App().dataHtmlDir);
  return PrepareDownload(url, folder, SharedDownloadRequest());
}

}  // namespace qb
