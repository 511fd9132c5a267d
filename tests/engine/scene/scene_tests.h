#pragma once

#include "frame/host/scene_document.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qn::test {

/// A named last child.
inline k3::Node* AddNode(k3::Node& parent, const wchar_t* name) {
    k3::Node* child = parent.CreateChildNode(0, 0, 0);
    child->SetName(name);
    return child;
}

/// Names of the children, in order, with the chain checked from both ends.
inline std::vector<std::string> ChildNames(const k3::Node& parent) {
    std::vector<std::string> names;
    for (const k3::Node* child = parent.GetFirstChild(); child; child = child->GetNextSibling()) {
        EXPECT_EQ(child->GetParent(), &parent);
        EXPECT_EQ(child->GetScene(), parent.GetScene());
        names.push_back(child->GetName().ToUtf8());
        if (!child->GetNextSibling()) {
            EXPECT_EQ(parent.GetLastChild(), child);
        }
    }
    EXPECT_EQ(parent.GetChildCount(), static_cast<int>(names.size()));
    return names;
}

/// The names of a tree, "a(b c(d))".
inline std::string TreeText(const k3::Node& node) {
    std::string text = node.GetName().ToUtf8();
    if (!node.GetFirstChild()) return text;
    text += "(";
    for (const k3::Node* child = node.GetFirstChild(); child; child = child->GetNextSibling())
        text += TreeText(*child) + (child->GetNextSibling() ? " " : "");
    return text + ")";
}

using Names = std::vector<std::string>;

}  // namespace qn::test
