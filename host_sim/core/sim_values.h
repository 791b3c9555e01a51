// The host's value objects. Each is reference counted, starts with one
// reference for whoever asked for it, and reports its birth and death to the
// ledger of the host that made it.
#pragma once

#include "sim_block_bytes.h"
#include "sim_value_ledger.h"
#include "zlrbase_values.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zelvar_sim {

// addRef, release and getType for one concrete value interface.
template <typename Interface>
class RefCounted : public Interface {
public:
    RefCounted(ValueLedger& ledger, std::uint32_t type) : m_ledger(ledger), m_type(type)
    {
        m_ledger.created();
    }
    RefCounted(const RefCounted&) = delete;
    RefCounted& operator=(const RefCounted&) = delete;
    virtual ~RefCounted() { m_ledger.destroyed(); }

    void addRef() override { ++m_references; }
    void release() override
    {
        if (--m_references == 0) {
            delete this;
        }
    }
    std::uint32_t getType() override { return m_type; }
    void reserved4() override {}

    int references() const { return m_references.load(); }

protected:
    ValueLedger& ledger() const { return m_ledger; }

private:
    ValueLedger& m_ledger;
    std::uint32_t m_type;
    std::atomic<int> m_references{1};
};

class ErrorValue final : public RefCounted<zlr::IfErrorValue> {
public:
    explicit ErrorValue(ValueLedger& ledger) : RefCounted(ledger, TYPE_CODE) {}
    void reserved5() override {}
    const char* getText() override { return m_text.c_str(); }
    void set(std::uint64_t code, const char* text) override
    {
        m_code = code;
        m_text = text ? text : "";
    }
    std::uint64_t code() const { return m_code; }

private:
    std::uint64_t m_code = 0;
    std::string m_text;
};

class StringValue final : public RefCounted<zlr::IfStringValue> {
public:
    explicit StringValue(ValueLedger& ledger, std::string text = {})
        : RefCounted(ledger, TYPE_CODE), m_text(std::move(text))
    {
    }
    const char* getData() override { return m_text.c_str(); }
    void reserved6() override {}
    void set(const char* text) override { m_text = text ? text : ""; }

private:
    std::string m_text;
};

class XmlValue final : public RefCounted<zlr::IfXmlValue> {
public:
    explicit XmlValue(ValueLedger& ledger, std::string text = {})
        : RefCounted(ledger, TYPE_CODE), m_text(std::move(text))
    {
    }
    const char* getData() override { return m_text.c_str(); }
    std::int32_t getLength() override { return static_cast<std::int32_t>(m_text.size()); }
    void set(const char* text) override { m_text = text ? text : ""; }

private:
    std::string m_text;
};

// A block's description as the plug-in gets it: the list's own text, lent
// until the plug-in writes to it, so that the blocks of a step are not each
// copied to be read once.
class LentXmlValue final : public RefCounted<zlr::IfXmlValue> {
public:
    LentXmlValue(ValueLedger& ledger, const std::string& text,
                 std::shared_ptr<const void> keep_alive)
        : RefCounted(ledger, TYPE_CODE), m_text(&text), m_keep_alive(std::move(keep_alive))
    {
    }
    const char* getData() override { return m_text->c_str(); }
    std::int32_t getLength() override { return static_cast<std::int32_t>(m_text->size()); }
    void set(const char* text) override
    {
        m_written = text ? text : "";
        m_text = &m_written;
    }

private:
    const std::string* m_text;
    std::string m_written;
    std::shared_ptr<const void> m_keep_alive;
};

class BooleanValue final : public RefCounted<zlr::IfBooleanValue> {
public:
    explicit BooleanValue(ValueLedger& ledger, bool value = false)
        : RefCounted(ledger, TYPE_CODE), m_value(value)
    {
    }
    bool get() override { return m_value; }
    void set(bool value) override { m_value = value; }

private:
    bool m_value;
};

class UInt64Value final : public RefCounted<zlr::IfUInt64Value> {
public:
    explicit UInt64Value(ValueLedger& ledger, std::uint64_t value = 0)
        : RefCounted(ledger, TYPE_CODE), m_value(value)
    {
    }
    void reserved5() override {}
    void set(std::uint64_t value) override { m_value = value; }
    std::uint64_t value() const { return m_value; }

private:
    std::uint64_t m_value;
};

class ScalarValue final : public RefCounted<zlr::IfScalarValue> {
public:
    ScalarValue(ValueLedger& ledger, double value, std::string unit)
        : RefCounted(ledger, TYPE_CODE), m_value(value), m_unit(std::move(unit))
    {
    }
    double getValue() override { return m_value; }
    const char* getUnit() override { return m_unit.c_str(); }

private:
    double m_value;
    std::string m_unit;
};

// One block of a data request's answer: views of its DataBlock document and
// of its bytes, both of which the owning list keeps alive.
class DataBlock final : public RefCounted<zlr::IfDataBlock> {
public:
    DataBlock(ValueLedger& ledger, const std::string& description, const void* data,
              std::shared_ptr<const void> keep_alive)
        : RefCounted(ledger, BLOCK_TYPE_CODE), m_description(description), m_data(data),
          m_keep_alive(std::move(keep_alive))
    {
    }
    zlr::IfXmlValue* getDescription() override
    {
        return new LentXmlValue(ledger(), m_description, m_keep_alive);
    }
    void reserved6() override {}
    const void* getData() override { return m_data; }

    // The host's own code for a block; plug-ins never test it.
    static constexpr std::uint32_t BLOCK_TYPE_CODE = 0x45;

private:
    const std::string& m_description;
    const void* m_data;
    std::shared_ptr<const void> m_keep_alive;
};

// The answer to a data request: a DataBlockList document and its blocks,
// whose bytes lie one after the other in one piece, so that the blocks of a
// step cost one allocation.
class DataBlockList final : public RefCounted<zlr::IfDataBlockList> {
public:
    struct Block {
        std::string description;
        std::size_t offset = 0; // of its first byte in the list's bytes
    };

    DataBlockList(ValueLedger& ledger, std::string description, std::vector<Block> blocks,
                  BlockBytes bytes)
        : RefCounted(ledger, TYPE_CODE), m_description(std::move(description)),
          m_content(std::make_shared<Content>(Content{std::move(blocks), std::move(bytes)}))
    {
    }
    zlr::IfXmlValue* getDescription() override { return new XmlValue(ledger(), m_description); }
    std::int32_t getBlockCount() override
    {
        return static_cast<std::int32_t>(m_content->blocks.size());
    }
    zlr::IfDataBlock* getBlock(std::int32_t index) override
    {
        if (index < 0 || index >= getBlockCount()) {
            return nullptr;
        }
        const Block& block = m_content->blocks[static_cast<std::size_t>(index)];
        return new DataBlock(ledger(), block.description, m_content->bytes.data() + block.offset,
                             m_content);
    }

private:
    struct Content {
        std::vector<Block> blocks;
        BlockBytes bytes;
    };

    std::string m_description;
    std::shared_ptr<const Content> m_content;
};

// A fresh value of `type` with one reference, or null for a type the host
// does not make on request.
zlr::IfValue* makeValue(ValueLedger& ledger, std::uint32_t type);

// The text of a string or XML value; empty for any other value.
std::string valueText(zlr::IfValue* value);

} // namespace zelvar_sim
