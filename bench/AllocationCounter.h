#pragma once

/// How often the program has allocated so far, by `operator new`; of every thread.
long allocationCount();
