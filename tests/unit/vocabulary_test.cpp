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
                           [](const std::string* key) { return *key; });
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
