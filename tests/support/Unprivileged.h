#pragma once

// Root reads every folder whatever its permissions, so a test about folders
// the user cannot read proves nothing as root, which is how CI runs. Such a
// test calls this first: as root it runs itself again in a user namespace,
// as an ordinary user who owns the files (so their permissions apply), takes
// that run's outcome and returns true; the caller then returns at once.
bool rerunUnprivilegedWhenRoot();
