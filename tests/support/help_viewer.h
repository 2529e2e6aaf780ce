// The WinHelp viewer, another process, as a test sees it: the built help file put
// into a program folder, the page the viewer shows, and closing it.
#pragma once

#include <windows.h>

#include <string>

#include "tests/support/gui_helper.h"

namespace qb::test {

// Copies the help file of this build into `folder` as QBHELP.HLP.
bool CopyHelpFileTo(const std::string& folder);

struct HelpPage {
  std::string caption;  // the viewer window's
  std::string heading;  // the first line of the topic's text
  std::string text;
};

// Waits until the viewer shows a topic whose first line is `heading`; on timeout
// returns whatever it showed last (an empty caption when no viewer came up).
// Plain waiting: the viewer answers from its own process.
HelpPage WaitForHelpPage(const std::string& heading, int timeoutMs = 10000);

// Asks the viewer to quit and waits until its window is gone; true when it is.
bool CloseHelpViewer(int timeoutMs = 10000);

// A modal step for a dialog with a Help button: presses it, takes the page the
// viewer comes up with (expecting `heading`) into `page`, notes whether the dialog
// is still open, closes the viewer and cancels the dialog.
ModalStep HelpThenCancel(const std::string& heading, HelpPage& page, bool& dialogStayedOpen);

}  // namespace qb::test
