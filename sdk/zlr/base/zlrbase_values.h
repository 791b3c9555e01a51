// Value objects that the host manufactures and both sides pass by pointer.
//
// Every object is reference counted. The host creates it with one reference
// for the caller; whoever holds a pointer releases it once. The order of the
// virtual operations is the binary contract with the host and must not change.
#pragma once

#include <cstdint>

namespace zlr {

// Type codes answered by IfValue::getType.
enum ValueType : std::uint32_t {
    VALUE_TYPE_ERROR = 0x1,
    VALUE_TYPE_STRING = 0x10,
    VALUE_TYPE_XML = 0x11,
    VALUE_TYPE_BOOLEAN = 0x20,
    VALUE_TYPE_UINT64 = 0x22,
    VALUE_TYPE_SCALAR = 0x30,
    VALUE_TYPE_DATA_BLOCK_LIST = 0x44,
};

// Base of all host values. Implemented by the host; called from any thread
// that holds a reference.
class IfValue {
public:
    // Adds one reference. Implemented by the host.
    virtual void addRef() = 0;
    // Drops one reference; the object dies with the last one.
    virtual void release() = 0;
    // The type code of the concrete value (ValueType).
    virtual std::uint32_t getType() = 0;
    // Not called by plug-ins.
    virtual void reserved4() = 0;

protected:
    ~IfValue() = default;
};

// Type 0x1: an error with a code and a text, given back on a failed message.
class IfErrorValue : public IfValue {
public:
    virtual void reserved5() = 0;
    // The error text; owned by the value, valid while the caller holds it.
    virtual const char* getText() = 0;
    // Stores code and text (the text is copied).
    virtual void set(std::uint64_t code, const char* text) = 0;

    static constexpr std::uint32_t TYPE_CODE = VALUE_TYPE_ERROR;

protected:
    ~IfErrorValue() = default;
};

// Type 0x10: a zero-terminated text.
class IfStringValue : public IfValue {
public:
    // The text, owned by the value; copy it before releasing.
    virtual const char* getData() = 0;
    virtual void reserved6() = 0;
    // Stores a copy of the text.
    virtual void set(const char* text) = 0;

    static constexpr std::uint32_t TYPE_CODE = VALUE_TYPE_STRING;

protected:
    ~IfStringValue() = default;
};

// Type 0x11: an XML document as zero-terminated text.
class IfXmlValue : public IfValue {
public:
    // The text, owned by the value; copy or parse it before releasing.
    virtual const char* getData() = 0;
    // Length of the text without its terminator.
    virtual std::int32_t getLength() = 0;
    // Stores a copy of the text.
    virtual void set(const char* text) = 0;

    static constexpr std::uint32_t TYPE_CODE = VALUE_TYPE_XML;

protected:
    ~IfXmlValue() = default;
};

// Type 0x20: a truth value.
class IfBooleanValue : public IfValue {
public:
    virtual bool get() = 0;
    virtual void set(bool value) = 0;

    static constexpr std::uint32_t TYPE_CODE = VALUE_TYPE_BOOLEAN;

protected:
    ~IfBooleanValue() = default;
};

// Type 0x22: an unsigned 64-bit number; plug-ins only write it.
class IfUInt64Value : public IfValue {
public:
    virtual void reserved5() = 0;
    virtual void set(std::uint64_t value) = 0;

    static constexpr std::uint32_t TYPE_CODE = VALUE_TYPE_UINT64;

protected:
    ~IfUInt64Value() = default;
};

// Type 0x30: a number with its unit; plug-ins only read it.
class IfScalarValue : public IfValue {
public:
    virtual double getValue() = 0;
    // The unit text, owned by the value.
    virtual const char* getUnit() = 0;

    static constexpr std::uint32_t TYPE_CODE = VALUE_TYPE_SCALAR;

protected:
    ~IfScalarValue() = default;
};

// One block of sample data inside an IfDataBlockList. Its bytes belong to the
// list and stay valid until the list is released.
class IfDataBlock : public IfValue {
public:
    // The DataBlock document of this block, with one reference for the caller.
    virtual IfXmlValue* getDescription() = 0;
    virtual void reserved6() = 0;
    // Address of the block's bytes.
    virtual const void* getData() = 0;

protected:
    ~IfDataBlock() = default;
};

// Type 0x44: the answer to a data request.
class IfDataBlockList : public IfValue {
public:
    // The DataBlockList document, with one reference for the caller.
    virtual IfXmlValue* getDescription() = 0;
    virtual std::int32_t getBlockCount() = 0;
    // Block `index`, with one reference for the caller.
    virtual IfDataBlock* getBlock(std::int32_t index) = 0;

    static constexpr std::uint32_t TYPE_CODE = VALUE_TYPE_DATA_BLOCK_LIST;

protected:
    ~IfDataBlockList() = default;
};

static_assert(sizeof(void*) == 8, "the host contract is 64-bit only");

} // namespace zlr
