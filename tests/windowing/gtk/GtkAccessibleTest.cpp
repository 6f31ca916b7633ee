#include "windowing/native/KGtkAccessible.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <vector>

namespace {

bool hasState(AtkObject* object, AtkStateType state)
{
    AtkStateSet* states = atk_object_ref_state_set(object);
    bool found = atk_state_set_contains_state(states, state);
    g_object_unref(states);
    return found;
}

// What a screen reader finds of the controls a window draws itself: one
// child each, by name (the program's Windows-set text read as UTF-8), kind,
// place and state; the same children while only their state changes.
TEST(GtkAccessibleTest, ControlsDrawnByTheProgramAreChildrenAReaderFinds)
{
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    GtkWidget* canvas = kGtkCanvasNew();
    gtk_container_add(GTK_CONTAINER(window), canvas);
    gtk_widget_show_all(window);

    std::vector<KNativeAccessible> controls(2);
    controls[0].name = "Couleur \xE9";
    controls[0].role = KNativeAccessibleRole::ToggleButton;
    controls[0].bounds = KNativeRect { 10, 20, 30, 40 };
    controls[0].pressed = true;
    controls[1].name = "Play";
    controls[1].enabled = false;
    kGtkSetAccessibleControls(canvas, controls);

    AtkObject* parent = gtk_widget_get_accessible(canvas);
    ASSERT_EQ(atk_object_get_n_accessible_children(parent), 2);
    AtkObject* colour = atk_object_ref_accessible_child(parent, 0);
    AtkObject* play = atk_object_ref_accessible_child(parent, 1);
    EXPECT_STREQ(atk_object_get_name(colour), "Couleur \xC3\xA9");
    EXPECT_EQ(atk_object_get_role(colour), ATK_ROLE_TOGGLE_BUTTON);
    EXPECT_EQ(atk_object_get_role(play), ATK_ROLE_PUSH_BUTTON);
    EXPECT_EQ(atk_object_get_parent(play), parent);
    EXPECT_EQ(atk_object_get_index_in_parent(play), 1);
    EXPECT_TRUE(hasState(colour, ATK_STATE_CHECKED));
    EXPECT_TRUE(hasState(colour, ATK_STATE_ENABLED));
    EXPECT_FALSE(hasState(play, ATK_STATE_ENABLED));
    gint x = 0, y = 0, width = 0, height = 0;
    atk_component_get_extents(ATK_COMPONENT(colour), &x, &y, &width, &height, ATK_XY_WINDOW);
    EXPECT_EQ(x, 10);
    EXPECT_EQ(y, 20);
    EXPECT_EQ(width, 30);
    EXPECT_EQ(height, 40);

    // The ring moves to Play: the reader keeps its objects and sees the focus.
    controls[1].focused = true;
    controls[1].enabled = true;
    kGtkSetAccessibleControls(canvas, controls);
    AtkObject* again = atk_object_ref_accessible_child(parent, 1);
    EXPECT_EQ(again, play);
    EXPECT_TRUE(hasState(play, ATK_STATE_FOCUSED));
    EXPECT_TRUE(hasState(play, ATK_STATE_ENABLED));
    g_object_unref(again);

    // A shorter list (the palette made short) replaces the children.
    controls.resize(1);
    kGtkSetAccessibleControls(canvas, controls);
    EXPECT_EQ(atk_object_get_n_accessible_children(parent), 1);
    EXPECT_EQ(atk_object_ref_accessible_child(parent, 1), nullptr);

    g_object_unref(colour);
    g_object_unref(play);
    gtk_widget_destroy(window);
}

} // namespace
