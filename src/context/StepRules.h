#pragma once

// Moves of several steps through the file list, made as one.
namespace StepRules {

// The list position from which one step in the direction of `steps` lands
// where `steps` single steps from `current` would: backward stops at the
// first file, forward at the last unless the slideshow wraps to the first.
// `current` itself when those steps go nowhere.
int startOfOneStep(int current, int steps, int upperBound, bool wraps);

} // namespace StepRules
