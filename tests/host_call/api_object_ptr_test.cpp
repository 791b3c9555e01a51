// The holder keeps exactly one reference, whatever is done with it.
#include "sim_values.h"
#include "zlr_assert_capture.h"
#include "zlrbase_api_object_ptr.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

using zelvar_sim::StringValue;
using zelvar_sim::ValueLedger;
using Holder = zlr::zlrbase_api_object_ptr<zlr::IfStringValue>;

TEST(ApiObjectPtr, KeepsExactlyOneReferenceThroughEveryOperation)
{
    ValueLedger ledger;
    {
        auto* fresh = new StringValue(ledger, "a"); // one reference, as from createValue
        Holder held;
        held.adopt(fresh);
        EXPECT_EQ(fresh->references(), 1);

        Holder copy(held);
        EXPECT_EQ(fresh->references(), 2);
        Holder moved(std::move(copy));
        EXPECT_EQ(fresh->references(), 2);
        EXPECT_FALSE(copy);

        moved = held; // the same object again: no change, no early death
        EXPECT_EQ(fresh->references(), 2);
        held = held;
        EXPECT_EQ(fresh->references(), 2);

        auto* other = new StringValue(ledger, "b");
        moved.adopt(other); // the old object loses its reference, the new one is held once
        EXPECT_EQ(fresh->references(), 1);
        EXPECT_EQ(other->references(), 1);

        zlr::IfStringValue* given_away = moved.detach();
        EXPECT_FALSE(moved);
        EXPECT_EQ(ledger.live(), 2);
        given_away->release();
        EXPECT_EQ(ledger.live(), 1);
    }
    EXPECT_EQ(ledger.live(), 0);
}

TEST(ApiObjectPtr, EmptyHolderReportsTheDereference)
{
    zlr::test::AssertCapture asserts;
    Holder empty;
    EXPECT_EQ(empty.operator->(), nullptr);
    EXPECT_EQ(asserts.reported(), std::vector<std::string>{"m_p != 0"});
}

} // namespace
