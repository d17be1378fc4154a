#include "vocabulary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <vector>

namespace Tarnwick::Parser {
namespace {

using Names = std::vector<std::string>;

Names groupNames() {
    Names names;
    for (const VocabularyGroup& group : vocabularyGroups()) {
        names.push_back(*group.name);
    }
    return names;
}

Names keysOf(const std::string& name) {
    Names keys;
    for (const VocabularyGroup& group : vocabularyGroups()) {
        if (*group.name == name) {
            std::transform(group.keys.begin(), group.keys.end(), std::back_inserter(keys),
                           [](const VocabularyKey& key) { return *key.name; });
        }
    }
    return keys;
}

/// The keys of all groups whose value is of the type.
Names keysOf(ValueType type) {
    Names keys;
    for (const VocabularyGroup& group : vocabularyGroups()) {
        for (const VocabularyKey& key : group.keys) {
            if (key.type == type) {
                keys.push_back(*key.name);
            }
        }
    }
    return keys;
}

TEST(Vocabulary, NamesFilesDirectoryAndInstance) {
    EXPECT_EQ(kFilePattern, "*.conf");
    EXPECT_EQ(kDefaultConfigDirectory, "/etc/tarnwick.conf.d");
    EXPECT_EQ(kDefaultInstance, "default");
}

TEST(Vocabulary, PermitsLettersDigitsAndFourOtherCharactersInNames) {
    EXPECT_EQ(kPermittedNameCharacters,
              " -.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz");
}

TEST(Vocabulary, KeepsThePermittedCharactersInAscendingOrderFromTheBlank) {
    EXPECT_EQ(kPermittedNameCharacters.front(), ' ');
    EXPECT_TRUE(std::is_sorted(kPermittedNameCharacters.begin(), kPermittedNameCharacters.end(),
                               std::less_equal<>()));
    for (const char character : kPermittedNameCharacters) {
        EXPECT_TRUE(std::binary_search(kPermittedNameCharacters.begin(),
                                       kPermittedNameCharacters.end(), character));
    }
}

TEST(Vocabulary, ListsTheGroupsInTheirOrder) {
    EXPECT_EQ(groupNames(),
              (Names{"Audio", "Config", "Devices", "Features", "GeneratedConfig", "Network"}));
}

TEST(Vocabulary, ListsTheAudioKeysInTheirOrder) {
    EXPECT_EQ(keysOf("Audio"),
              (Names{"BufferSizeInDefault", "BufferSizeOutDeepBuffer", "BufferSizeOutDefault",
                     "BufferSizeOutFast", "BufferSizeOutVoip", "PerAppStreams", "UsbHostProxy"}));
}

TEST(Vocabulary, ListsTheConfigKeysInTheirOrderWhichIsNotAlphabetical) {
    EXPECT_EQ(keysOf("Config"), (Names{"AllowGrantingPrivileges",
                                       "AppIdManglingType",
                                       "AppIdPrefix",
                                       "AppLaunchMode",
                                       "TarnwickPath",
                                       "ApparmorProfile",
                                       "Arch",
                                       "BatteryCapacity",
                                       "CodecXmlSuffix",
                                       "CrashLoggerLogLevel",
                                       "CustomProperties",
                                       "DataRoot",
                                       "Dex2oatMaxHeapSize",
                                       "FakeBattery",
                                       "HostStorageMapping",
                                       "Hostname",
                                       "KeepNamespaces",
                                       "KeyboardInAppWindow",
                                       "LanguageFilePath",
                                       "LanguageOverride",
                                       "UseLogcatDumper",
                                       "MountHome",
                                       "Mounts",
                                       "MultisimConfig",
                                       "Multisim",
                                       "MultisimRadioConfig",
                                       "OpenGLESVersion",
                                       "PackageReplacementAllowed",
                                       "PrivilegedHostUser",
                                       "PropertyFilePath",
                                       "RunVendorC2Service",
                                       "SDCardFSForced",
                                       "StoragePath",
                                       "SysMountRw",
                                       "UseIds",
                                       "WaylandSocketPath"}));
}

TEST(Vocabulary, ListsTheDevicesKeysInTheirOrder) {
    EXPECT_EQ(keysOf("Devices"), (Names{"BinderDev", "DevNodes", "DevSize", "HwBinderDev",
                                        "RequiredDevNodes", "VndBinderDev"}));
}

TEST(Vocabulary, ListsTheFeaturesKeysInTheirOrder) {
    EXPECT_EQ(keysOf("Features"),
              (Names{"CameraEnabled", "CrashLoggerEnabled", "DialogsAsOverlays",
                     "TextInputProtocolEnabled", "ExternalStorageEnabled",
                     "OnScreenKeyboardEnabled", "MobileDataEnabled", "SoundtriggerEnabled"}));
}

TEST(Vocabulary, ListsTheGeneratedKeysInTheirOrder) {
    EXPECT_EQ(keysOf("GeneratedConfig"),
              (Names{"BaseUid", "DefaultLxc", "DefaultRo", "Home", "Instance", "PropertyPost",
                     "PropertyPre", "UserId", "User"}));
}

TEST(Vocabulary, ListsTheNetworkKeysInTheirOrder) {
    EXPECT_EQ(keysOf("Network"),
              (Names{"DNSServers", "IPV4Address", "IPV4Gateway", "LinkName", "NetConfig"}));
}

TEST(Vocabulary, SaysOfWhatTypeAValueIs) {
    EXPECT_EQ(
        keysOf(ValueType::Boolean),
        (Names{"AllowGrantingPrivileges", "FakeBattery", "KeepNamespaces", "KeyboardInAppWindow",
               "UseLogcatDumper", "MountHome", "PackageReplacementAllowed", "RunVendorC2Service",
               "SDCardFSForced", "SysMountRw", "CameraEnabled", "CrashLoggerEnabled",
               "DialogsAsOverlays", "TextInputProtocolEnabled", "ExternalStorageEnabled",
               "OnScreenKeyboardEnabled", "MobileDataEnabled", "SoundtriggerEnabled"}));
    EXPECT_EQ(
        keysOf(ValueType::Number),
        (Names{"BufferSizeInDefault", "BufferSizeOutDeepBuffer", "BufferSizeOutDefault",
               "BufferSizeOutFast", "BufferSizeOutVoip", "BatteryCapacity", "BaseUid", "UserId"}));
    EXPECT_EQ(keysOf(ValueType::MountEntries), Names{"Mounts"});
}

TEST(Vocabulary, NamesTheTypes) {
    EXPECT_EQ(valueTypeName(ValueType::Text), "text");
    EXPECT_EQ(valueTypeName(ValueType::Boolean), "boolean");
    EXPECT_EQ(valueTypeName(ValueType::Number), "number");
    EXPECT_EQ(valueTypeName(ValueType::MountEntries), "mount entries");
}

TEST(Vocabulary, CallsGroupsAndKeysByTheirNames) {
    EXPECT_EQ(kGroupConfig, "Config");
    EXPECT_EQ(kGroupGeneratedConfig, "GeneratedConfig");
    EXPECT_EQ(kKeyBaseUid, "BaseUid");
    EXPECT_EQ(kKeyHome, "Home");
    EXPECT_EQ(kKeyInstance, "Instance");
    EXPECT_EQ(kKeyUserId, "UserId");
    EXPECT_EQ(kKeyUser, "User");
}

TEST(Vocabulary, HasTheFixedValues) {
    EXPECT_EQ(kValueBridge, "bridge");
    EXPECT_EQ(kValueDisable, "disable");
    EXPECT_EQ(kValueKestrune, "kestrune");
    EXPECT_EQ(kValueSkip, "skip");
    EXPECT_EQ(kValueNoDots, "NoDots");
    EXPECT_EQ(kValueNone, "None");
}

}  // namespace
}  // namespace Tarnwick::Parser
