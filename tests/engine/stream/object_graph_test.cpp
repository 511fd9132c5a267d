#include "engine/stream/object_file.h"
#include "engine/stream/stream_reader.h"
#include "frame/host/object_writer.h"
#include "tests/engine/stream/knot.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

/// A class without any way to be stored.
class Bare final : public Interface {
public:
    const char* GetInterfaceName() const override { return "test.bare"; }
};

/// A class that a writer knows.
class Foreign final : public Interface {
public:
    const char* GetInterfaceName() const override { return "test.foreign"; }
};

TEST(ObjectGraph, ComesBackWithItsContent) {
    const auto root = MakeKnot("root");
    root->SetParamVar(7, Var(42));
    root->SetMetaValue(Var("key"), Var("value"));

    const auto copy = Copied(*root);

    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->name, "root");
    EXPECT_EQ(copy->GetParamVar(7).ToInt(), 42);
    EXPECT_EQ(copy->GetMetadata(false)->Lookup(Var("key"))->ToText(), String(L"value"));
}

TEST(ObjectGraph, KeepsASharedObjectOneObject) {
    const auto root = MakeKnot("root"), shared = MakeKnot("shared");
    root->Link(shared.Get()).Link(shared.Get());

    const auto copy = Copied(*root);

    EXPECT_TRUE(copy->At(0));
    EXPECT_EQ(copy->At(0), copy->At(1));
}

TEST(ObjectGraph, SharesAnObjectBetweenChunksAndValues) {
    const auto root = MakeKnot("root"), shared = MakeKnot("shared");
    root->Link(shared.Get());
    root->SetParamVar(9, Var(shared.Get(), 1));

    const auto copy = Copied(*root);

    EXPECT_EQ(copy->GetParamVar(9).ToInterface(), copy->links[0].Get());
}

TEST(ObjectGraph, GivesEveryObjectBeforeThoseThatNameIt) {
    const auto root = MakeKnot("root"), middle = MakeKnot("middle"), leaf = MakeKnot("leaf");
    middle->Link(leaf.Get());
    root->Link(leaf.Get()).Link(middle.Get());

    const auto copy = Copied(*root);

    EXPECT_EQ(copy->linkWasRead, (std::vector<bool>{true, true}));
    EXPECT_EQ(copy->At(1)->linkWasRead, std::vector<bool>{true});
}

TEST(ObjectGraph, GivesAnUnreadObjectOfTheRightClassInsideARing) {
    const auto root = MakeKnot("root"), other = MakeKnot("other");
    root->Link(other.Get());
    other->Link(root.Get());

    const auto copy = Copied(*root);

    EXPECT_EQ(copy->linkWasRead, std::vector<bool>{true});
    EXPECT_EQ(copy->At(0)->linkWasRead, std::vector<bool>{false});
    EXPECT_EQ(copy->At(0)->At(0), copy.Get());
    copy->Clear(), root->Clear();
}

TEST(ObjectGraph, LetsAnObjectNameItself) {
    const auto root = MakeKnot("root");
    root->Link(root.Get());

    const auto copy = Copied(*root);

    EXPECT_EQ(copy->At(0), copy.Get());
    copy->Clear(), root->Clear();
}

TEST(ObjectGraph, ReadsANullChunkAsNull) {
    const auto root = MakeKnot("root");
    root->Link(nullptr).Link(MakeKnot("leaf").Get());

    const auto copy = Copied(*root);

    ASSERT_EQ(copy->links.size(), 2u);
    EXPECT_FALSE(copy->links[0]);
    EXPECT_EQ(copy->At(1)->name, "leaf");
}

TEST(ObjectGraph, KeepsAWeakLinkToAnObjectThatIsWrittenAnyway) {
    const auto root = MakeKnot("root"), leaf = MakeKnot("leaf");
    root->weakLinks.emplace_back(leaf.Get());  // before the strong one
    root->Link(leaf.Get());

    const auto copy = Copied(*root);

    EXPECT_EQ(copy->weakLinks[0].Get(), copy->links[0].Get());
}

TEST(ObjectGraph, KeepsAWeakLinkUpwards) {
    const auto root = MakeKnot("root"), leaf = MakeKnot("leaf");
    leaf->weakLinks.emplace_back(root.Get());
    root->Link(leaf.Get());

    const auto copy = Copied(*root);

    EXPECT_EQ(copy->At(0)->weakLinks[0].Get(), copy.Get());
    EXPECT_EQ(copy->linkWasRead, std::vector<bool>{true});
}

TEST(ObjectGraph, ForgetsAWeakLinkToAnObjectThatNobodyElseWrites) {
    const auto root = MakeKnot("root"), leaf = MakeKnot("leaf");
    root->weakLinks.emplace_back(leaf.Get());
    root->SetParamVar(5, Var(leaf.Get(), 0));

    const auto copy = Copied(*root);

    ASSERT_EQ(copy->weakLinks.size(), 1u);
    EXPECT_FALSE(copy->weakLinks[0]);
    EXPECT_TRUE(copy->GetParamVar(5).IsEmpty());
}

TEST(ObjectGraph, WritesACollectionAsItIsDuringTheCall) {
    const auto root = MakeKnot("root");
    Var map;
    map.At(1) = Var("kept");
    root->saveExtra = [&](Stream& stream) {
        map.At(2) = Var("only for the time of saving");
        stream.WriteObjectChunk(map.ToInterface(), nullptr, 0x1000);
        map.Remove(Var(2));
        return ResultEnum::kSuccess;
    };
    Counted<Interface> read;
    Knot::loadExtra = [&](Stream& stream) {
        EXPECT_TRUE(stream.NextChunk());
        read = stream.ReadObject(nullptr);
        stream.EndChunk();
        return ResultEnum::kSuccess;
    };

    Copied(*root);
    Knot::loadExtra = nullptr;

    ASSERT_TRUE(Cast<VarMap>(read.Get()));
    EXPECT_TRUE(Cast<VarMap>(read.Get())->Lookup(2));
}

TEST(ObjectGraph, KeepsATemporaryCollectionUntilTheEnd) {
    const auto root = MakeKnot("root");
    root->saveExtra = [](Stream& stream) {
        for (int i = 0; i < 10; ++i) {
            const auto array = VarArray::Create(1);
            array->Set(0, Var(i));
            stream.WriteObjectChunk(array.Get(), nullptr, 0x1000);
        }
        return ResultEnum::kSuccess;
    };
    std::vector<int> numbers;
    Knot::loadExtra = [&](Stream& stream) {
        for (; stream.NextChunk(); stream.EndChunk())
            numbers.push_back(Cast<VarArray>(stream.ReadObject(nullptr).Get())->Get(0).ToInt());
        return ResultEnum::kSuccess;
    };

    Copied(*root);
    Knot::loadExtra = nullptr;

    EXPECT_EQ(numbers, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST(ObjectGraph, GivesTheSameBytesAgain) {
    const auto root = MakeKnot("root"), shared = MakeKnot("shared");
    shared->SetMetaValue(Var("b"), Var(1)), shared->SetMetaValue(Var("a"), Var(root.Get(), 0));
    root->Link(shared.Get()).Link(MakeKnot("leaf").Get()).Link(shared.Get());
    root->weakLinks.emplace_back(shared.Get());

    const auto bytes = Saved(*root);

    EXPECT_EQ(Saved(*root), bytes);
    EXPECT_EQ(Saved(*Loaded(bytes)), bytes);
}

TEST(ObjectGraph, GivesTheSameBytesAgainAfterALinkThatLeadsNowhere) {
    const auto root = MakeKnot("root"), alone = MakeKnot("alone");
    const auto bare = Make<Bare>();
    root->SetParamVar(5, Var(alone.Get(), 0)), root->SetParamVar(6, Var(bare.Get(), 1));
    root->SetMetaValue(Var("weak"), Var(alone.Get(), 0)), root->SetMetaValue(Var("bare"), Var(bare.Get(), 1));
    root->SetMetaValue(Var("dead"), Var(MakeKnot("dead").Get(), 0));

    const auto bytes = Saved(*root);

    EXPECT_EQ(Saved(*Loaded(bytes)), bytes);
    EXPECT_EQ(root->GetMetadata(false)->GetCount(), 3);
}

TEST(ObjectGraph, LeavesOutWhatNothingCanWriteAndCountsIt) {
    const auto context = MakeContext();
    const auto root = MakeKnot("root");
    const auto bare = Make<Bare>();
    root->Link(bare.Get()).Link(bare.Get());
    SaveReport report;

    const auto copy = CountedCast<Knot>(Loaded(WriteObjects(*root, "x", *context, false, &report)));

    EXPECT_EQ(report.unwritable, (std::map<std::string, int>{{"test.bare", 2}}));
    EXPECT_EQ(copy->links.size(), 2u);
    EXPECT_FALSE(copy->links[0]);
}

TEST(ObjectGraph, RefusesARootThatNothingCanWrite) {
    const auto context = MakeContext();

    EXPECT_EQ(SaveToBytes(*Make<Bare>(), *context), "");
    EXPECT_EQ(context->GetFailure(), LoadFailure::kDefect);
}

TEST(ObjectGraph, UsesTheWriterOfAForeignClass) {
    static int stored = 0;
    RegisterObjectWriter({"test.foreign", [] { return Counted<Interface>(Make<Foreign>()); },
                          [](Interface&, Stream* stream, Context*) {
                              return stream->WriteInt(99) ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
                          },
                          [](Interface&, Stream* stream, Context*) {
                              return stream->ReadInt(stored) ? ResultEnum::kSuccess : ResultEnum::kNothing;
                          }});
    const auto root = MakeKnot("root");
    root->Link(Make<Foreign>().Get());

    const auto copy = Copied(*root);

    EXPECT_EQ(copy->links[0]->GetInterfaceName(), std::string("test.foreign"));
    EXPECT_EQ(stored, 99);
}

TEST(ObjectGraph, ReadsAnObjectOfAnUnknownClassAsNullAndCountsIt) {
    const auto root = MakeKnot("root");
    root->Link(MakeKnot("child").Get()).Link(MakeKnot("leaf").Get());
    root->At(0)->Link(VarMap::Create().Get());
    auto bytes = Saved(*root);
    const auto key = bytes.find("k3_varmap");
    bytes[key] = 'X';
    const auto context = MakeContext();
    const auto reader = Make<StreamReader>("x", bytes, *context, false);

    ASSERT_TRUE(reader->Read()) << context->GetFailureText().ToUtf8();

    const auto* copy = Cast<Knot>(reader->GetRoot());
    EXPECT_FALSE(copy->At(0)->links[0]);
    EXPECT_EQ(copy->At(1)->name, "leaf");
    EXPECT_EQ(reader->GetReport().unknown, (std::map<std::string, int>{{"X3_varmap", 1}}));
    EXPECT_EQ(reader->GetReport().objects, 3u);
}

TEST(ObjectGraph, StopsWhenAClassRefusesToBeSaved) {
    const auto context = MakeContext();
    const auto root = MakeKnot("root");
    root->saveExtra = [](Stream&) { return ResultEnum::kWriteFailed; };

    EXPECT_EQ(SaveToBytes(*root, *context), "");
    EXPECT_EQ(context->GetFailureText(),
              String(L"memory: an object of class test.knot: the object cannot be saved: result -8"));
}

TEST(ObjectGraph, StopsWhenAClassRefusesWhatItReads) {
    const auto context = MakeContext();
    const auto root = MakeKnot("root");
    root->saveExtra = [](Stream&) { return ResultEnum::kSuccess; };
    const auto bytes = Saved(*root);
    Knot::loadExtra = [](Stream&) { return ResultEnum::kWrongState; };

    EXPECT_FALSE(LoadFromBytes(bytes, *context));
    Knot::loadExtra = nullptr;

    EXPECT_EQ(context->GetFailure(), LoadFailure::kMalformed);
    EXPECT_NE(context->GetFailureText().ToUtf8().find("object 1 of class test.knot"), std::string::npos);
}

TEST(ObjectGraph, StopsLoadingWhenCancelled) {
    const auto context = MakeContext();
    context->CancelAtReport(1);

    EXPECT_FALSE(LoadFromBytes(Saved(*MakeKnot("root")), *context));
    EXPECT_EQ(context->GetFailure(), LoadFailure::kCancelled);
}

TEST(ObjectGraph, KeepsParameterTables) {
    const auto root = MakeKnot("root");
    const auto params = Params::Create();
    params->SetParamVar(3, Var("three"));
    params->SetParamVar(-1, Var(root.Get(), 0));
    root->Link(params.Get());

    const auto copy = Copied(*root);

    const auto* table = Cast<Params>(copy->links[0].Get());
    EXPECT_EQ(table->GetParamVar(3).ToText(), String(L"three"));
    EXPECT_EQ(table->GetParamVar(-1).ToInterface(), copy.Get());
}

TEST(ObjectGraph, KeepsListsOfObjects) {
    const auto root = MakeKnot("root"), leaf = MakeKnot("leaf"), alone = MakeKnot("alone");
    const Counted<InterfaceArray> lists[] = {InterfaceArray::CreateStrong(), InterfaceArray::CreateWeak(),
                                             PointerArray::Create()};
    root->Link(leaf.Get());
    for (const auto& list : lists)
        list->Add(root.Get()), list->Add(leaf.Get()), root->Link(list.Get());
    lists[1]->Add(alone.Get());

    const auto copy = Copied(*root);

    for (const std::size_t i : {1u, 2u, 3u}) {
        const auto* list = Cast<InterfaceArray>(copy->links[i].Get());
        EXPECT_EQ(list->IsStrong(), i == 1);
        EXPECT_EQ(list->Get(0), copy.Get());
        EXPECT_EQ(list->Get(1), copy->links[0].Get());
        EXPECT_EQ(list->GetCount(), i == 2 ? 3 : 2);
    }
    EXPECT_TRUE(Cast<PointerArray>(copy->links[3].Get()));
    Cast<InterfaceArray>(copy->links[1].Get())->Clear(), lists[0]->Clear();
}

}  // namespace
}  // namespace qn::test
