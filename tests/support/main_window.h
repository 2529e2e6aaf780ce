// For tests that drive the program through its main window: the frame's tables,
// start-up and settings. Tests of any folder reach the top through here.
#pragma once

#include "app/frame.h"
