#pragma once

#include "platform/PictureLoader.h"

#include <functional>

namespace PictureLoader {

using Decode = std::function<Picture(const QString &path, const Options &options)>;

// load() on a thread of its own while the caller waits at most limitMs,
// letting the window repaint and its timers run meanwhile (user input waits
// until the call returns, so nothing re-enters the caller). A decode past
// the limit gives a null picture; its thread ends on its own and the
// result is dropped.
Picture loadWithinLimit(const QString &path, const Options &options, int limitMs, const Decode &decode = load);

} // namespace PictureLoader
