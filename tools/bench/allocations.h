#pragma once

/** How often the calling thread has asked the heap for memory so far, in any library. */
long Allocations();
