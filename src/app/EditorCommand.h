#pragma once

// Runs the database editor for "c:zel_plcedit" and "c:ZLPLCDB"; true when it ended with
// OK and the user asked for an insert. Without a screen it says so and answers false.
bool RunEditorDialog();
