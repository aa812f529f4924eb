// Debian's header, with the include that it takes for granted.
#include <memory>

#include_next <binder/IInterface.h>
