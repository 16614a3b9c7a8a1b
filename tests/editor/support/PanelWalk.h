// Walks a panel's element tree: which parameters have a control, which rectangles occupy the panel,
// where they stand in panel space, and which of them overlap or leave the window.
#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "LuaPanelRig.h"
#include "editor/Manager.h"
#include "editor/widgets/Control.h"
#include "editor/widgets/Group.h"
#include "editor/widgets/Label.h"
#include "editor/widgets/StepEditors.h"

namespace BR::Test {

inline Box PanelBox(UIElement* element) {
    const Point offset = element->ParentOffset();
    Box box;
    box.v[0] = element->rect[0] + offset.x, box.v[1] = element->rect[1] + offset.y;
    box.v[3] = element->rect[3] + offset.x, box.v[4] = element->rect[4] + offset.y;
    return box;
}

inline bool Overlap(const Box& a, const Box& b) {
    return a.v[0] < b.v[3] && b.v[0] < a.v[3] && a.v[1] < b.v[4] && b.v[1] < a.v[4];
}

// A named group's frame in panel space, padding included.
inline Box GroupBox(NamedGroup* group) {
    Box box;
    group->GetBounds(box);
    return box;
}

// Every element below `group` that is neither a group nor a label.
inline void CollectElements(Group* group, std::vector<UIElement*>& out) {
    for (UIElement* child : group->children) {
        if (auto* sub = dynamic_cast<Group*>(child))
            CollectElements(sub, out);
        else if (!dynamic_cast<Label*>(child))
            out.push_back(child);
    }
}

// The table rows that some control edits: a knob, field, drop-down or button of its own, or a cell of a
// step or DAC editor.
inline std::set<int32_t> BoundParameters(const std::vector<UIElement*>& elements) {
    std::set<int32_t> bound;
    for (UIElement* element : elements) {
        if (auto* control = dynamic_cast<Control*>(element)) bound.insert(control->parameter);
        if (auto* row = dynamic_cast<RowEditor*>(element))
            for (int32_t parameter : row->parameters)
                if (parameter >= 0) bound.insert(parameter);
    }
    return bound;
}

// True when `element` sits in the group titled `title` at any depth.
inline bool InGroup(UIElement* element, const std::string& title) {
    for (Group* g = element->parent; g; g = g->parent)
        if (auto* named = dynamic_cast<NamedGroup*>(g); named && named->title == title) return true;
    return false;
}

// Elements that take room on the screen now: the shown ones, and those of the hidden "OSC" group, which
// keeps its space.
inline std::vector<UIElement*> Occupying(const std::vector<UIElement*>& elements) {
    std::vector<UIElement*> out;
    for (UIElement* element : elements)
        if (element->IsShown() || InGroup(element, "OSC")) out.push_back(element);
    return out;
}

// A readable name for failure messages.
inline std::string Describe(Manager& manager, UIElement* element) {
    const Box box = PanelBox(element);
    const std::string where = " at (" + std::to_string(int(box.v[0])) + ", " + std::to_string(int(box.v[1])) +
                              ") to (" + std::to_string(int(box.v[3])) + ", " +
                              std::to_string(int(box.v[4])) + ")";
    if (auto* control = dynamic_cast<Control*>(element))
        return std::string("control of \"") + manager.ParameterInfo(control->parameter).name + "\"" + where;
    return "element" + where;
}

// Every element inside the window; no two that take room now overlapping; groups shown now, and the
// hidden "OSC" group, inside the window and apart.
inline void CheckPanelLayout(LuaPanelRig& rig, int width, int height, const std::string& when) {
    SCOPED_TRACE(when);
    std::vector<UIElement*> elements;
    CollectElements(rig.manager.rootGroup, elements);
    // Every element inside the window, shown or not.
    for (UIElement* element : elements) {
        const Box box = PanelBox(element);
        EXPECT_TRUE(box.v[0] >= 0 && box.v[1] >= 0 && box.v[3] <= width && box.v[4] <= height)
            << Describe(rig.manager, element) << " leaves the window";
    }
    // No two elements that take room now overlap: controls, buttons, displays.
    const std::vector<UIElement*> occupying = Occupying(elements);
    for (size_t a = 0; a < occupying.size(); ++a)
        for (size_t b = a + 1; b < occupying.size(); ++b)
            EXPECT_FALSE(Overlap(PanelBox(occupying[a]), PanelBox(occupying[b])))
                << Describe(rig.manager, occupying[a]) << " and " << Describe(rig.manager, occupying[b]);
    // Groups shown now, and the hidden "OSC" group, inside the window and apart.
    std::vector<NamedGroup*> groups;
    for (NamedGroup* group : rig.Groups())
        if (group->visible || group->title == "OSC") groups.push_back(group);
    for (size_t a = 0; a < groups.size(); ++a) {
        const Box box = GroupBox(groups[a]);
        EXPECT_TRUE(box.v[0] >= 0 && box.v[1] >= 0 && box.v[3] <= width && box.v[4] <= height)
            << groups[a]->title << " leaves the window: (" << box.v[0] << ", " << box.v[1] << ") to ("
            << box.v[3] << ", " << box.v[4] << ")";
        for (size_t b = a + 1; b < groups.size(); ++b)
            EXPECT_FALSE(Overlap(box, GroupBox(groups[b])))
                << groups[a]->title << " and " << groups[b]->title;
    }
}

}  // namespace BR::Test
