#pragma once
// The window works on whole documents of hundreds of megabytes: the view's text, the copies a
// command or undo makes. Each such buffer, freshly allocated, costs a page fault per 4 KB, which
// makes copying 100 MB take several hundred milliseconds; backed by 2 MB pages it takes a tenth of
// that. The C library's allocator does that for every large allocation when told so in its
// settings from the environment, which it reads only when a program starts: Editor sets it for
// Editor-full, and Editor-full takes it out again so that the programs it starts do not inherit
// it.

namespace ed {

// In Editor, before it starts Editor-full. Leaves a setting the user made alone.
void askHugePageMalloc();

// First thing in Editor-full: the environment as the user had it.
void forgetHugePageMalloc();

} // namespace ed
