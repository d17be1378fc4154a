#pragma once

// The rows of the vocabulary, in their order of definition, which is not alphabetical everywhere
// and is kept as it stands. A list calls `ROW` once a name: for a group with the group's list of
// keys, for a key with the type of its value (`ValueType`). From one row come the constant's
// declaration, its definition, its place in the tables (see vocabulary.h), in the completions and
// in the manual: the build reads this file as well, so a row stays on a line of its own.
// clang-format off

#define TARNWICK_GROUPS(ROW) \
    ROW(Audio, TARNWICK_AUDIO_KEYS) \
    ROW(Config, TARNWICK_CONFIG_KEYS) \
    ROW(Devices, TARNWICK_DEVICES_KEYS) \
    ROW(Features, TARNWICK_FEATURES_KEYS) \
    ROW(GeneratedConfig, TARNWICK_GENERATED_CONFIG_KEYS) \
    ROW(Network, TARNWICK_NETWORK_KEYS)

#define TARNWICK_AUDIO_KEYS(ROW) \
    ROW(BufferSizeInDefault, Number) \
    ROW(BufferSizeOutDeepBuffer, Number) \
    ROW(BufferSizeOutDefault, Number) \
    ROW(BufferSizeOutFast, Number) \
    ROW(BufferSizeOutVoip, Number) \
    ROW(PerAppStreams, Text) \
    ROW(UsbHostProxy, Text)

#define TARNWICK_CONFIG_KEYS(ROW) \
    ROW(AllowGrantingPrivileges, Boolean) \
    ROW(AppIdManglingType, Text) \
    ROW(AppIdPrefix, Text) \
    ROW(AppLaunchMode, Text) \
    ROW(TarnwickPath, Text) \
    ROW(ApparmorProfile, Text) \
    ROW(Arch, Text) \
    ROW(BatteryCapacity, Number) \
    ROW(CodecXmlSuffix, Text) \
    ROW(CrashLoggerLogLevel, Text) \
    ROW(CustomProperties, Text) \
    ROW(DataRoot, Text) \
    ROW(Dex2oatMaxHeapSize, Text) \
    ROW(FakeBattery, Boolean) \
    ROW(HostStorageMapping, Text) \
    ROW(Hostname, Text) \
    ROW(KeepNamespaces, Boolean) \
    ROW(KeyboardInAppWindow, Boolean) \
    ROW(LanguageFilePath, Text) \
    ROW(LanguageOverride, Text) \
    ROW(UseLogcatDumper, Boolean) \
    ROW(MountHome, Boolean) \
    ROW(Mounts, MountEntries) \
    ROW(MultisimConfig, Text) \
    ROW(Multisim, Text) \
    ROW(MultisimRadioConfig, Text) \
    ROW(OpenGLESVersion, Text) \
    ROW(PackageReplacementAllowed, Boolean) \
    ROW(PrivilegedHostUser, Text) \
    ROW(PropertyFilePath, Text) \
    ROW(RunVendorC2Service, Boolean) \
    ROW(SDCardFSForced, Boolean) \
    ROW(StoragePath, Text) \
    ROW(SysMountRw, Boolean) \
    ROW(UseIds, Text) \
    ROW(WaylandSocketPath, Text)

#define TARNWICK_DEVICES_KEYS(ROW) \
    ROW(BinderDev, Text) \
    ROW(DevNodes, Text) \
    ROW(DevSize, Text) \
    ROW(HwBinderDev, Text) \
    ROW(RequiredDevNodes, Text) \
    ROW(VndBinderDev, Text)

#define TARNWICK_FEATURES_KEYS(ROW) \
    ROW(CameraEnabled, Boolean) \
    ROW(CrashLoggerEnabled, Boolean) \
    ROW(DialogsAsOverlays, Boolean) \
    ROW(TextInputProtocolEnabled, Boolean) \
    ROW(ExternalStorageEnabled, Boolean) \
    ROW(OnScreenKeyboardEnabled, Boolean) \
    ROW(MobileDataEnabled, Boolean) \
    ROW(SoundtriggerEnabled, Boolean)

#define TARNWICK_GENERATED_CONFIG_KEYS(ROW) \
    ROW(BaseUid, Number) \
    ROW(DefaultLxc, Text) \
    ROW(DefaultRo, Text) \
    ROW(Home, Text) \
    ROW(Instance, Text) \
    ROW(PropertyPost, Text) \
    ROW(PropertyPre, Text) \
    ROW(UserId, Number) \
    ROW(User, Text)

#define TARNWICK_NETWORK_KEYS(ROW) \
    ROW(DNSServers, Text) \
    ROW(IPV4Address, Text) \
    ROW(IPV4Gateway, Text) \
    ROW(LinkName, Text) \
    ROW(NetConfig, Text)

// The fixed values; the constant of "bridge" is kValueBridge, and so on.
#define TARNWICK_VALUES(ROW) \
    ROW(Bridge, "bridge") \
    ROW(Disable, "disable") \
    ROW(Kestrune, "kestrune") \
    ROW(Skip, "skip") \
    ROW(NoDots, "NoDots") \
    ROW(None, "None")
// clang-format on
