#include "tests/engine/stream/knot.h"

#include "engine/stream/limits.h"
#include "engine/stream/object_file.h"
#include "engine/stream/stream_writer.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

/// Writes one knot whose extra chunk is made by `save`, and reads it by `load`.
class Chunk : public testing::Test {
protected:
    void RoundTrip(Knot::Extra save, const std::function<void(Stream&)>& load) {
        const auto root = MakeKnot("root");
        root->saveExtra = std::move(save);
        bool called = false;
        Knot::loadExtra = [&](Stream& stream) {
            called = true;
            load(stream);
            return ResultEnum::kSuccess;
        };
        Copied(*root);
        Knot::loadExtra = nullptr;
        EXPECT_TRUE(called);
    }
    static ResultEnum Done(bool written = true) {
        return written ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
    }
};

TEST_F(Chunk, HoldsDataAndNumbers) {
    RoundTrip(
        [](Stream& out) {
            const double values[] = {1.5, -2.5};
            return Done(out.WriteInt(-7) && out.WriteData(values, sizeof(double), 2));
        },
        [](Stream& in) {
            int number = 0;
            double values[2] = {};
            EXPECT_EQ(in.Remaining(), 20u);
            EXPECT_TRUE(in.ReadInt(number));
            EXPECT_EQ(in.ReadData(values, sizeof(double), 2), 2);
            EXPECT_EQ(number, -7);
            EXPECT_EQ(values[1], -2.5);
        });
}

TEST_F(Chunk, NestsOtherChunks) {
    RoundTrip(
        [](Stream& out) {
            for (const unsigned id : {0x10u, 0xffffu}) {
                EXPECT_TRUE(out.BeginChunk(id));
                EXPECT_TRUE(out.BeginChunk(1));
                EXPECT_EQ(out.GetChunkId(), 1);
                out.WriteInt(static_cast<int>(id));
                out.EndChunk();
                out.EndChunk();
            }
            return Done();
        },
        [](Stream& in) {
            std::vector<int> ids;
            for (; in.NextChunk(); in.EndChunk()) {
                ids.push_back(in.GetChunkId());
                int value = 0;
                EXPECT_TRUE(in.NextChunk());
                EXPECT_TRUE(in.ReadInt(value));
                in.EndChunk();
                EXPECT_EQ(value, ids.back());
            }
            EXPECT_EQ(ids, (std::vector<int>{0x10, 0xffff}));
        });
}

TEST_F(Chunk, GivesNothingPastItsEnd) {
    RoundTrip(
        [](Stream& out) {
            out.BeginChunk(1), out.WriteData("abcde", 1, 5), out.EndChunk();
            return Done(out.WriteInt(1));
        },
        [](Stream& in) {
            char bytes[8] = {};
            int number = 5;
            EXPECT_TRUE(in.NextChunk());
            EXPECT_EQ(in.ReadData(bytes, 2, 4), 2);  // whole items only
            EXPECT_EQ(in.Remaining(), 1u);
            EXPECT_FALSE(in.ReadInt(number));
            EXPECT_EQ(number, 0);
            EXPECT_EQ(in.ReadData(bytes, 1, 8), 1);
            EXPECT_FALSE(in.NextChunk());
            in.EndChunk();
        });
}

TEST_F(Chunk, CanBeLeftAtAnyPlace) {
    RoundTrip(
        [](Stream& out) {
            for (unsigned id = 1; id <= 3; ++id) {
                out.BeginChunk(id);
                out.WriteInt(1), out.BeginChunk(9), out.WriteInt(2), out.EndChunk();
                out.EndChunk();
            }
            return Done(out.WriteInt(77));
        },
        [](Stream& in) {
            int number = 0;
            EXPECT_TRUE(in.NextChunk());
            in.EndChunk();  // nothing consumed
            EXPECT_TRUE(in.NextChunk());
            in.ReadInt(number);
            in.EndChunk();  // part of it consumed
            EXPECT_TRUE(in.NextChunk());
            in.ReadInt(number);
            EXPECT_TRUE(in.NextChunk());  // goes on behind what was read
            EXPECT_EQ(in.GetChunkId(), 9);
            in.EndChunk(), in.EndChunk();
            EXPECT_TRUE(in.ReadInt(number));
            EXPECT_EQ(number, 77);
        });
}

TEST_F(Chunk, IsSkippedIfNobodyKnowsIt) {
    const auto root = MakeKnot("root");
    root->saveExtra = [](Stream& out) { return Done(out.WriteInt(5)); };
    root->Link(MakeKnot("leaf").Get());

    EXPECT_EQ(Copied(*root)->At(0)->name, "leaf");  // no reader for the extra chunk is set
}

TEST_F(Chunk, RefusesAnIdOfMoreThan16Bits) {
    const auto context = MakeContext();
    const auto root = MakeKnot("root");
    root->saveExtra = [](Stream& out) { return Done(out.BeginChunk(0x10000)); };

    EXPECT_EQ(SaveToBytes(*root, *context), "");
    EXPECT_EQ(
        context->GetFailureText(),
        String(
            L"memory: chunk 0x1003 of an object of class test.knot: chunk id 0x10000 has more than 16 bits"));
}

TEST_F(Chunk, NestsToANamedLimit) {
    const auto context = MakeContext();
    const auto root = MakeKnot("root");
    std::size_t opened = 1;  // the extra chunk itself
    root->saveExtra = [&](Stream& out) {
        while (out.BeginChunk(1))
            ++opened;
        return Done();
    };

    EXPECT_EQ(SaveToBytes(*root, *context), "");
    EXPECT_EQ(opened, scene_file_limits::kDeepestChunk);
    EXPECT_EQ(context->GetFailure(), LoadFailure::kLimit);
}

TEST_F(Chunk, DoesNotOpenOnceTheStreamHasFailed) {
    const auto context = MakeContext();
    const auto root = MakeKnot("root");
    root->saveExtra = [](Stream& out) {
        EXPECT_FALSE(out.Fail(L"on purpose"));
        EXPECT_TRUE(out.HasFailed());
        EXPECT_FALSE(out.BeginChunk(1));
        EXPECT_FALSE(out.WriteInt(1));
        EXPECT_FALSE(out.WriteData("x", 1, 1));
        EXPECT_FALSE(out.WriteObjectNumber(nullptr, nullptr, false));
        EXPECT_FALSE(out.WriteObjectChunk(nullptr, nullptr, 1));
        return Done();
    };

    EXPECT_EQ(SaveToBytes(*root, *context), "");
}

TEST_F(Chunk, ReadsNothingOnceTheStreamHasFailed) {
    const auto context = MakeContext();
    const auto root = MakeKnot("root");
    root->saveExtra = [](Stream& out) { return Done(out.WriteInt(5)); };
    const auto bytes = Saved(*root);
    Knot::loadExtra = [](Stream& in) {
        int value = 1;
        EXPECT_FALSE(in.Fail(L"on purpose"));
        EXPECT_FALSE(in.ReadInt(value));
        EXPECT_FALSE(in.NextChunk());
        EXPECT_EQ(in.Remaining(), 0u);
        EXPECT_FALSE(in.ReadObject(nullptr));
        return ResultEnum::kSuccess;
    };

    EXPECT_FALSE(LoadFromBytes(bytes, *context));
    Knot::loadExtra = nullptr;

    EXPECT_EQ(context->Texts().size(), 1u);
    EXPECT_NE(context->Texts()[0].find("chunk 0x1003 of object 1 of class test.knot: on purpose"),
              std::string::npos);
}

TEST_F(Chunk, RefusesAWriteWhileReadingAndAReadWhileWriting) {
    RoundTrip(
        [](Stream& out) {
            int value = 0;
            EXPECT_FALSE(out.NextChunk());
            EXPECT_FALSE(out.ReadInt(value));
            EXPECT_EQ(out.ReadData(&value, 1, 4), 0);
            EXPECT_FALSE(out.ReadObject(nullptr));
            return Done(!out.HasFailed());
        },
        [](Stream& in) {
            EXPECT_FALSE(in.BeginChunk(1));
            EXPECT_FALSE(in.WriteInt(1));
            EXPECT_FALSE(in.WriteObjectChunk(nullptr, nullptr, 1));
            EXPECT_FALSE(in.HasFailed());
        });
}

TEST_F(Chunk, TellsWhetherNodesAreToBeStored) {
    for (const bool expand : {false, true}) {
        const auto context = MakeContext();
        const auto root = MakeKnot("root");
        root->saveExtra = [&](Stream& out) {
            EXPECT_EQ(Cast<StreamWriter>(&out)->ExpandsGenerated(), expand);
            return Done();
        };
        EXPECT_NE(WriteObjects(*root, "x", *context, expand), "");
    }
}

}  // namespace
}  // namespace qn::test
