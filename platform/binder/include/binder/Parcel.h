// Debian's header, with the includes that it takes for granted.
#include <limits>
#include <memory>

#include_next <binder/Parcel.h>
