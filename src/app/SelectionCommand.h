#pragma once

#include "CommandDispatcher.h"

// Runs the selection dialog for the arguments of "zel_mbsel"; true and the answer in
// result when the user confirmed a module. Without a screen it says so and answers false.
bool RunSelectionDialog(const SelectionArgs& args, HostValue& result);
