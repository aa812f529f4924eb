#include <binder/Parcel.h>
#include <utils/Unicode.h>

#include <algorithm>
#include <map>

#include "local_service.h"
#include "transaction_buffer.h"

namespace android {

/** The parcel's one friend: on the platform, too, it is what moves parcels between processes. */
class IPCThreadState {
  public:
    static void* cookieOf(const Parcel& parcel) { return parcel.mOwnerCookie; }
};

namespace {

constexpr int32_t kInterfaceHeader = B_PACK_CHARS('H', 'O', 'S', 'T');
constexpr int32_t kNull = -1;
constexpr int32_t kNoBinder = 0;
constexpr int32_t kBinder = B_PACK_CHARS('b', 'n', 'd', 'r');

using kalvorn::host::TransactionBuffer;

/** The bytes, and the binders that stand in them, by offset: references cannot be forged. */
struct Contents {
    ~Contents() { leaveBuffer(); }

    void leaveBuffer() {
        if (buffer != nullptr) buffer->give(taken);
        buffer = nullptr;
    }

    std::vector<uint8_t> bytes;
    std::map<size_t, sp<IBinder>> binders;
    std::shared_ptr<TransactionBuffer> buffer;
    size_t taken = 0;
};

/** The class is fixed by the platform; of its members only the cookie suits. */
Contents& ContentsOf(void* cookie) {
    return *static_cast<Contents*>(cookie);
}

size_t Padded(size_t length) {
    return (length + 3) & ~size_t{3};
}

/** Reads the element count of something that must not be null. */
status_t ReadLength(const Parcel& parcel, size_t elementSize, size_t* length) {
    int32_t read;
    const status_t status = parcel.readInt32(&read);
    if (status != OK) return status;
    if (read < 0) return UNEXPECTED_NULL;
    if (static_cast<size_t>(read) > parcel.dataAvail() / elementSize) return NOT_ENOUGH_DATA;
    *length = static_cast<size_t>(read);
    return OK;
}

/** Finds a text within the parcel; a zero follows it there. */
status_t ReadText(const Parcel& parcel, const char16_t** text, size_t* length) {
    const status_t status = ReadLength(parcel, sizeof(char16_t), length);
    if (status != OK) return status;
    *text = static_cast<const char16_t*>(parcel.readInplace((*length + 1) * sizeof(char16_t)));
    return *text != nullptr ? OK : NOT_ENOUGH_DATA;
}

template <typename T>
status_t WriteVector(Parcel* parcel, const std::vector<T>& values) {
    const status_t status = parcel->writeVectorSize(values);
    return status == OK ? parcel->write(values.data(), values.size() * sizeof(T)) : status;
}

template <typename T>
status_t ReadVector(const Parcel& parcel, std::vector<T>* values) {
    size_t length;
    const status_t status = ReadLength(parcel, sizeof(T), &length);
    if (status != OK) return status;
    values->resize(length);
    return parcel.read(values->data(), length * sizeof(T));
}

}  // namespace

Parcel::Parcel() : mDataPos(0), mOwnerCookie(new Contents) {}

Parcel::~Parcel() {
    delete &ContentsOf(mOwnerCookie);
}

const uint8_t* Parcel::data() const {
    return ContentsOf(mOwnerCookie).bytes.data();
}
size_t Parcel::dataSize() const {
    return ContentsOf(mOwnerCookie).bytes.size();
}
size_t Parcel::dataAvail() const {
    return dataSize() - std::min(dataSize(), mDataPos);
}
size_t Parcel::dataPosition() const {
    return mDataPos;
}
void Parcel::setDataPosition(size_t position) const {
    mDataPos = position;
}

status_t Parcel::setDataSize(size_t size) {
    Contents& contents = ContentsOf(mOwnerCookie);
    contents.bytes.resize(size);
    contents.binders.erase(contents.binders.lower_bound(size), contents.binders.end());
    return OK;
}

void Parcel::freeData() {
    setDataSize(0);
    ContentsOf(mOwnerCookie).leaveBuffer();
    mDataPos = 0;
}

status_t Parcel::appendFrom(const Parcel* parcel, size_t start, size_t length) {
    const Contents& source = ContentsOf(parcel->mOwnerCookie);
    if (start > source.bytes.size() || length > source.bytes.size() - start) return BAD_VALUE;
    const size_t target = mDataPos;
    const status_t status = write(source.bytes.data() + start, length);
    if (status != OK) return status;
    const auto end = source.binders.lower_bound(start + length);
    for (auto it = source.binders.lower_bound(start); it != end; ++it) {
        ContentsOf(mOwnerCookie).binders[it->first - start + target] = it->second;
    }
    return OK;
}

status_t Parcel::writeInterfaceToken(const String16& interface) {
    const status_t status = writeInt32(kInterfaceHeader);
    return status == OK ? writeString16(interface) : status;
}

bool Parcel::enforceInterface(const String16& interface, IPCThreadState*) const {
    int32_t header;
    String16 name;
    return readInt32(&header) == OK && header == kInterfaceHeader && readString16(&name) == OK &&
           name == interface;
}

bool Parcel::checkInterface(IBinder* binder) const {
    return enforceInterface(binder->getInterfaceDescriptor());
}

void* Parcel::writeInplace(size_t length) {
    if (length > INT32_MAX) return nullptr;
    std::vector<uint8_t>& bytes = ContentsOf(mOwnerCookie).bytes;
    const size_t start = mDataPos;
    mDataPos += Padded(length);
    if (mDataPos > bytes.size()) bytes.resize(mDataPos);
    return bytes.data() + start;
}

status_t Parcel::write(const void* data, size_t length) {
    auto* const target = static_cast<uint8_t*>(writeInplace(length));
    if (target == nullptr && length > 0) return BAD_VALUE;
    std::copy_n(static_cast<const uint8_t*>(data), length, target);
    return OK;
}

status_t Parcel::writeInt32(int32_t value) {
    return write(&value, sizeof(value));
}
status_t Parcel::writeBool(bool value) {
    return writeInt32(value);
}
status_t Parcel::writeByte(int8_t value) {
    return writeInt32(value);
}

status_t Parcel::writeString16(const char16_t* text, size_t length) {
    if (text == nullptr) return writeInt32(kNull);
    if (length > INT32_MAX / 2 - 1) return BAD_VALUE;
    const status_t status = writeInt32(static_cast<int32_t>(length));
    if (status != OK) return status;
    auto* const target = static_cast<char16_t*>(writeInplace((length + 1) * sizeof(char16_t)));
    *std::copy_n(text, length, target) = 0;
    return OK;
}

status_t Parcel::writeString16(const String16& text) {
    return writeString16(text.string(), text.size());
}

status_t Parcel::writeUtf8AsUtf16(const std::string& text) {
    const auto* const utf8 = reinterpret_cast<const uint8_t*>(text.data());
    const ssize_t length = utf8_to_utf16_length(utf8, text.size());
    if (length < 0 || length > INT32_MAX / 2 - 1) return BAD_VALUE;
    std::u16string utf16(length + 1, 0);
    utf8_to_utf16(utf8, text.size(), utf16.data(), utf16.size());
    return writeString16(utf16.data(), length);
}

status_t Parcel::writeStrongBinder(const sp<IBinder>& binder) {
    if (binder == nullptr) return writeInt32(kNoBinder);
    ContentsOf(mOwnerCookie).binders[mDataPos] = binder;
    return writeInt32(kBinder);
}

status_t Parcel::writeByteVector(const std::vector<uint8_t>& bytes) {
    return WriteVector(this, bytes);
}

status_t Parcel::writeInt32Vector(const std::vector<int32_t>& values) {
    return WriteVector(this, values);
}

status_t Parcel::writeParcelable(const Parcelable& parcelable) {
    const status_t status = writeInt32(1);
    return status == OK ? parcelable.writeToParcel(this) : status;
}

const void* Parcel::readInplace(size_t length) const {
    if (length > dataAvail() || Padded(length) > dataAvail()) return nullptr;
    const uint8_t* const found = data() + mDataPos;
    mDataPos += Padded(length);
    return found;
}

status_t Parcel::read(void* target, size_t length) const {
    if (length == 0) return OK;
    const auto* const source = static_cast<const uint8_t*>(readInplace(length));
    if (source == nullptr) return NOT_ENOUGH_DATA;
    std::copy_n(source, length, static_cast<uint8_t*>(target));
    return OK;
}

status_t Parcel::readInt32(int32_t* value) const {
    return read(value, sizeof(*value));
}

int32_t Parcel::readInt32() const {
    int32_t value = 0;
    readInt32(&value);
    return value;
}

status_t Parcel::readBool(bool* value) const {
    int32_t read;
    const status_t status = readInt32(&read);
    if (status == OK) *value = read != 0;
    return status;
}

status_t Parcel::readByte(int8_t* value) const {
    int32_t read;
    const status_t status = readInt32(&read);
    if (status == OK) *value = static_cast<int8_t>(read);
    return status;
}

status_t Parcel::readString16(String16* text) const {
    const char16_t* utf16;
    size_t length;
    const status_t status = ReadText(*this, &utf16, &length);
    if (status == OK) text->setTo(utf16, length);
    return status;
}

status_t Parcel::readUtf8FromUtf16(std::string* text) const {
    const char16_t* utf16;
    size_t length;
    const status_t status = ReadText(*this, &utf16, &length);
    if (status != OK) return status;
    // The measuring function has no answer for an empty text.
    const ssize_t utf8Length = length == 0 ? 0 : utf16_to_utf8_length(utf16, length);
    if (utf8Length < 0) return BAD_VALUE;
    text->resize(utf8Length + 1);
    utf16_to_utf8(utf16, length, text->data(), text->size());
    text->resize(utf8Length);
    return OK;
}

status_t Parcel::readNullableStrongBinder(sp<IBinder>* binder) const {
    const std::map<size_t, sp<IBinder>>& binders = ContentsOf(mOwnerCookie).binders;
    const auto found = binders.find(mDataPos);
    int32_t mark;
    const status_t status = readInt32(&mark);
    if (status != OK) return status;
    if (mark != kNoBinder && (mark != kBinder || found == binders.end())) return BAD_TYPE;
    *binder = mark == kNoBinder ? nullptr : kalvorn::host::RemoteView(found->second);
    return OK;
}

status_t Parcel::readStrongBinder(sp<IBinder>* binder) const {
    const status_t status = readNullableStrongBinder(binder);
    return status == OK && *binder == nullptr ? UNEXPECTED_NULL : status;
}

status_t Parcel::readByteVector(std::vector<uint8_t>* bytes) const {
    return ReadVector(*this, bytes);
}

status_t Parcel::readInt32Vector(std::vector<int32_t>* values) const {
    return ReadVector(*this, values);
}

status_t Parcel::readParcelable(Parcelable* parcelable) const {
    int32_t present;
    const status_t status = readInt32(&present);
    if (status != OK) return status;
    return present != 0 ? parcelable->readFromParcel(this) : UNEXPECTED_NULL;
}

}  // namespace android

namespace kalvorn::host {

using namespace android;

status_t Receive(const std::shared_ptr<TransactionBuffer>& buffer, const Parcel& source,
                 Parcel* target) {
    target->freeData();
    const size_t size = (source.dataSize() + 7) & ~size_t{7};
    if (!buffer->take(size)) return FAILED_TRANSACTION;
    Contents& contents = ContentsOf(IPCThreadState::cookieOf(*target));
    contents.buffer = buffer;
    contents.taken = size;
    const status_t status = target->appendFrom(&source, 0, source.dataSize());
    target->setDataPosition(0);
    return status;
}

}  // namespace kalvorn::host
