#pragma once

// Generated headers always include this file; no interface here uses message queues.
