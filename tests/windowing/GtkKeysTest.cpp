#include "windowing/KNativeRecord.h"
#include "windowing/native/KGtkKeys.h"
#include "windowing/native/KGtkText.h"

#include <gdk/gdk.h>
#include <gtest/gtest.h>

namespace {

TEST(GtkKeysTest, KeyValuesBecomeVirtualKeys)
{
    EXPECT_EQ(kGtkVirtualKey(GDK_KEY_F1), 0x70);
    EXPECT_EQ(kGtkVirtualKey(GDK_KEY_F15), 0x7E);
    EXPECT_EQ(kGtkVirtualKey(GDK_KEY_w), 'W');
    EXPECT_EQ(kGtkVirtualKey(GDK_KEY_W), 'W');
    EXPECT_EQ(kGtkVirtualKey(GDK_KEY_7), '7');
    EXPECT_EQ(kGtkVirtualKey(GDK_KEY_KP_Enter), KVirtualKey::Return);
    EXPECT_EQ(kGtkVirtualKey(GDK_KEY_ISO_Left_Tab), KVirtualKey::Tab);
    EXPECT_EQ(kGtkVirtualKey(GDK_KEY_Print), KVirtualKey::Snapshot);
    EXPECT_EQ(kGtkVirtualKey(GDK_KEY_KP_Page_Down), KVirtualKey::Next);
    EXPECT_EQ(kGtkVirtualKey(GDK_KEY_eacute), 0);
}

TEST(GtkKeysTest, TypedCharactersAreWindowsSetBytes)
{
    EXPECT_EQ(kGtkCharacter(GDK_KEY_a, 0), 'a');
    EXPECT_EQ(kGtkCharacter(GDK_KEY_eacute, GDK_SHIFT_MASK), 0xE9);
    EXPECT_EQ(kGtkCharacter(GDK_KEY_EuroSign, 0), 0x80);
    EXPECT_EQ(kGtkCharacter(GDK_KEY_question, 0), '?');
    EXPECT_EQ(kGtkCharacter(GDK_KEY_w, GDK_CONTROL_MASK), 'w');
    EXPECT_EQ(kGtkCharacter(GDK_KEY_W, GDK_CONTROL_MASK | GDK_SHIFT_MASK), 'W');
    EXPECT_EQ(kGtkCharacter(GDK_KEY_w, GDK_MOD1_MASK), 0);
    EXPECT_EQ(kGtkCharacter(GDK_KEY_Return, 0), 0);
    EXPECT_EQ(kGtkCharacter(GDK_KEY_Greek_alpha, 0), 0);
    EXPECT_EQ(kToUtf8("caf\xE9"), "caf\xC3\xA9");
    EXPECT_EQ(kFromUtf8("caf\xC3\xA9"), "caf\xE9");
}

} // namespace
