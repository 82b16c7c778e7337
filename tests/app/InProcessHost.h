// The real program's host built by its own start-up inside the test process:
// the Null sound device, platform layers that report themselves working, no
// pauses, and errors and the end of the program swallowed.
#pragma once

#include <memory>

class CMixoraDlg;

namespace testsupport {

// Resets the engine state and starts a host; null when start-up fails.
std::unique_ptr<CMixoraDlg> StartInProcessHost();

}  // namespace testsupport
