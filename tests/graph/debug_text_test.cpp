#include "tests/graph/graph_support.h"

namespace qn::test {

namespace {

template <class T>
std::string Address(const Counted<T>& element) {
    return std::to_string(static_cast<int>(reinterpret_cast<std::intptr_t>(element.Get())));
}

}  // namespace

TEST(DebugText, OfAnInstanceWithoutReference) {
    const auto instance = MakeInstance();
    instance->SetProperty(Prop::kName, Var(L"door"));
    EXPECT_EQ(instance->ToDebugString().ToUtf8(),
              "<Instance name=\"door\" ref=\"" + Address(instance) + "\"></Instance>");
}

TEST(DebugText, NestsDefinitionsAndUses) {
    const auto car = MakeReference();
    const auto door = MakeReference();
    car->SetProperty(Prop::kName, Var(L"car"));
    door->SetProperty(Prop::kName, Var(L"door"));
    const auto left = MakeInstance(door.Get());
    const auto right = MakeInstance(door.Get());
    AddChildren(*car, {left.Get(), right.Get()});
    const std::string inside =
        "<Reference name=\"door\" ref=\"" + Address(door) + "\"></Reference></Instance>";
    EXPECT_EQ(car->ToDebugString().ToUtf8(), "<Reference name=\"car\" ref=\"" + Address(car) + "\">" +
                                                 "<Instance name=\"\" ref=\"" + Address(left) + "\">" +
                                                 inside + "<Instance name=\"\" ref=\"" + Address(right) +
                                                 "\">" + inside + "</Reference>");
}

TEST(DebugText, TakesTheOwnNameOnly) {
    const auto part = MakeReference();
    part->SetProperty(Prop::kName, Var(L"part"));
    EXPECT_EQ(MakeInstance(part.Get())->ToDebugString().ToUtf8().find("<Instance name=\"\""), 0u);
}

TEST(DebugText, OfARingEnds) {
    const auto car = MakeReference();
    const auto use = MakeInstance(car.Get());
    car->AddChild(use.Get());
    EXPECT_EQ(car->ToDebugString().ToUtf8(), "<Reference name=\"\" ref=\"" + Address(car) + "\">" +
                                                 "<Instance name=\"\" ref=\"" + Address(use) +
                                                 "\"></Instance>" + "</Reference>");
    use->SetReference(nullptr);
}

TEST(DebugText, OfADeepChainIsWhole) {
    const Chain chain(kDeep);
    const std::string text = chain.root->ToDebugString().ToUtf8();
    EXPECT_TRUE(text.ends_with("</Reference></Instance></Reference>"));
}

}  // namespace qn::test
