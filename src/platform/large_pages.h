#pragma once

namespace facet {

/// Has the memory that this process takes from now on come in large pages and stay with it when it is freed,
/// where the system can do that: a process that reads and draws a model otherwise spends most of its time on
/// being given small pages. For programs that do one thing and end; call it before any thread is started.
void preferLargePages();

}  // namespace facet
