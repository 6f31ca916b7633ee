#include "windowing/native/KGtkKeys.h"

#include "windowing/KNativeRecord.h"
#include "windowing/native/KGtkText.h"

#include <gdk/gdk.h>

namespace {

struct KeyPair {
    guint keyval;
    int32_t virtualKey;
};

constexpr KeyPair kKeyTable[] = {
    { GDK_KEY_Up, KVirtualKey::Up },
    { GDK_KEY_KP_Up, KVirtualKey::Up },
    { GDK_KEY_Down, KVirtualKey::Down },
    { GDK_KEY_KP_Down, KVirtualKey::Down },
    { GDK_KEY_Left, KVirtualKey::Left },
    { GDK_KEY_KP_Left, KVirtualKey::Left },
    { GDK_KEY_Right, KVirtualKey::Right },
    { GDK_KEY_KP_Right, KVirtualKey::Right },
    { GDK_KEY_Home, KVirtualKey::Home },
    { GDK_KEY_KP_Home, KVirtualKey::Home },
    { GDK_KEY_End, KVirtualKey::End },
    { GDK_KEY_KP_End, KVirtualKey::End },
    { GDK_KEY_Page_Up, KVirtualKey::Prior },
    { GDK_KEY_KP_Page_Up, KVirtualKey::Prior },
    { GDK_KEY_Page_Down, KVirtualKey::Next },
    { GDK_KEY_KP_Page_Down, KVirtualKey::Next },
    { GDK_KEY_Help, KVirtualKey::Help },
    { GDK_KEY_Delete, KVirtualKey::Delete },
    { GDK_KEY_KP_Delete, KVirtualKey::Delete },
    { GDK_KEY_BackSpace, KVirtualKey::Back },
    { GDK_KEY_Tab, KVirtualKey::Tab },
    { GDK_KEY_ISO_Left_Tab, KVirtualKey::Tab },
    { GDK_KEY_KP_Tab, KVirtualKey::Tab },
    { GDK_KEY_Return, KVirtualKey::Return },
    { GDK_KEY_KP_Enter, KVirtualKey::Return },
    { GDK_KEY_ISO_Enter, KVirtualKey::Return },
    { GDK_KEY_Escape, KVirtualKey::Escape },
    { GDK_KEY_Print, KVirtualKey::Snapshot },
    { GDK_KEY_Shift_L, KVirtualKey::Shift },
    { GDK_KEY_Shift_R, KVirtualKey::Shift },
    { GDK_KEY_Control_L, KVirtualKey::Control },
    { GDK_KEY_Control_R, KVirtualKey::Control },
    { GDK_KEY_Caps_Lock, KVirtualKey::Capital },
    { GDK_KEY_Num_Lock, KVirtualKey::NumLock },
    { GDK_KEY_space, ' ' },
};

} // namespace

int32_t kGtkVirtualKey(uint32_t keyval)
{
    if (keyval >= GDK_KEY_F1 && keyval <= GDK_KEY_F15)
        return KVirtualKey::F1 + static_cast<int32_t>(keyval - GDK_KEY_F1);
    if (keyval >= GDK_KEY_a && keyval <= GDK_KEY_z)
        return 'A' + static_cast<int32_t>(keyval - GDK_KEY_a);
    if (keyval >= GDK_KEY_A && keyval <= GDK_KEY_Z)
        return static_cast<int32_t>(keyval);
    if (keyval >= GDK_KEY_0 && keyval <= GDK_KEY_9)
        return static_cast<int32_t>(keyval);
    for (const auto& pair : kKeyTable) {
        if (pair.keyval == keyval)
            return pair.virtualKey;
    }
    return 0;
}

int32_t kGtkCharacter(uint32_t keyval, uint32_t modifierState)
{
    if (modifierState & GDK_MOD1_MASK)
        return 0;
    gunichar unicode = gdk_keyval_to_unicode(keyval);
    if (unicode < 32 || unicode == 127)
        return 0;
    gchar utf8[8] = {};
    g_unichar_to_utf8(unicode, utf8);
    std::string windows = kFromUtf8(utf8);
    if (windows.size() != 1 || (windows[0] == '?' && unicode != '?'))
        return 0;
    return static_cast<unsigned char>(windows[0]);
}
