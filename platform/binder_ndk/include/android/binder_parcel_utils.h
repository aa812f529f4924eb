/** Generated code includes this; ints and binders need nothing beyond binder_parcel.h. */
#pragma once

#include <android/binder_auto_utils.h>
#include <android/binder_parcel.h>
