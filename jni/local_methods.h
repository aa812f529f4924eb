#pragma once

#include <jni.h>

/** The methods that the library serves itself, whatever services the device has. */
namespace native_local {

/**
 * Frame interpolation by the display chip's vendor library, which is loaded by the first call that
 * finds it and never closed. Each returns the entry point's own result, or -1, after a line with
 * the loader's message, when the library or the entry point is missing; the next call tries again.
 * The three without arguments ignore what the virtual machine passes them.
 */
jint SetInperpolateFrameMode(JNIEnv* env, jobject obj, jint first, jint second);
jint GetInperpolateFrameCurMode();
jint GetInperpolateFrameTestResult();
jint RecoverFreshRate();

/** The virtual machine of the last SendCommandMcu; nothing here reads it. */
extern JavaVM* g_javaVm;

/** Notes the virtual machine and logs its arguments; no command is sent. Returns 0. */
jint SendCommandMcu(JNIEnv* env, jobject obj, jint first, jint second, jbyteArray data);

/**
 * Logs and returns 0. intended: there is no object parameter, so the first integer receives the
 * calling object's reference, the second the first Java integer, and the other is not seen.
 */
jint UnregisterCallback(JNIEnv* env, jint serviceId, jint result);

/**
 * Writes the boot-into-recovery request, 512 bytes, to the start of the misc partition. Returns 0,
 * or -1 when the partition cannot be opened or takes less than the whole record.
 */
jint WriteMiscToRecovery(JNIEnv* env, jobject obj);

}  // namespace native_local
