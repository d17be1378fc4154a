#pragma once

// The rows of the vocabulary, in their order of definition, which is not alphabetical everywhere
// and is kept as it stands. Each list calls `ROW(name)` once a name; from one row come the
// constant's declaration, its definition and its place in the tables (see vocabulary.h).
// clang-format off

#define TARNWICK_GROUPS(ROW) \
    ROW(Audio) \
    ROW(Config) \
    ROW(Devices) \
    ROW(Features) \
    ROW(GeneratedConfig) \
    ROW(Network)

#define TARNWICK_AUDIO_KEYS(ROW) \
    ROW(BufferSizeInDefault) \
    ROW(BufferSizeOutDeepBuffer) \
    ROW(BufferSizeOutDefault) \
    ROW(BufferSizeOutFast) \
    ROW(BufferSizeOutVoip) \
    ROW(PerAppStreams) \
    ROW(UsbHostProxy)

#define TARNWICK_CONFIG_KEYS(ROW) \
    ROW(AllowGrantingPrivileges) \
    ROW(AppIdManglingType) \
    ROW(AppIdPrefix) \
    ROW(AppLaunchMode) \
    ROW(TarnwickPath) \
    ROW(ApparmorProfile) \
    ROW(Arch) \
    ROW(BatteryCapacity) \
    ROW(CodecXmlSuffix) \
    ROW(CrashLoggerLogLevel) \
    ROW(CustomProperties) \
    ROW(DataRoot) \
    ROW(Dex2oatMaxHeapSize) \
    ROW(FakeBattery) \
    ROW(HostStorageMapping) \
    ROW(Hostname) \
    ROW(KeepNamespaces) \
    ROW(KeyboardInAppWindow) \
    ROW(LanguageFilePath) \
    ROW(LanguageOverride) \
    ROW(UseLogcatDumper) \
    ROW(MountHome) \
    ROW(Mounts) \
    ROW(MultisimConfig) \
    ROW(Multisim) \
    ROW(MultisimRadioConfig) \
    ROW(OpenGLESVersion) \
    ROW(PackageReplacementAllowed) \
    ROW(PrivilegedHostUser) \
    ROW(PropertyFilePath) \
    ROW(RunVendorC2Service) \
    ROW(SDCardFSForced) \
    ROW(StoragePath) \
    ROW(SysMountRw) \
    ROW(UseIds) \
    ROW(WaylandSocketPath)

#define TARNWICK_DEVICES_KEYS(ROW) \
    ROW(BinderDev) \
    ROW(DevNodes) \
    ROW(DevSize) \
    ROW(HwBinderDev) \
    ROW(RequiredDevNodes) \
    ROW(VndBinderDev)

#define TARNWICK_FEATURES_KEYS(ROW) \
    ROW(CameraEnabled) \
    ROW(CrashLoggerEnabled) \
    ROW(DialogsAsOverlays) \
    ROW(TextInputProtocolEnabled) \
    ROW(ExternalStorageEnabled) \
    ROW(OnScreenKeyboardEnabled) \
    ROW(MobileDataEnabled) \
    ROW(SoundtriggerEnabled)

#define TARNWICK_GENERATED_CONFIG_KEYS(ROW) \
    ROW(BaseUid) \
    ROW(DefaultLxc) \
    ROW(DefaultRo) \
    ROW(Home) \
    ROW(Instance) \
    ROW(PropertyPost) \
    ROW(PropertyPre) \
    ROW(UserId) \
    ROW(User)

#define TARNWICK_NETWORK_KEYS(ROW) \
    ROW(DNSServers) \
    ROW(IPV4Address) \
    ROW(IPV4Gateway) \
    ROW(LinkName) \
    ROW(NetConfig)

// The fixed values; the constant of "bridge" is kValueBridge, and so on.
#define TARNWICK_VALUES(ROW) \
    ROW(Bridge, "bridge") \
    ROW(Disable, "disable") \
    ROW(Kestrune, "kestrune") \
    ROW(Skip, "skip") \
    ROW(NoDots, "NoDots") \
    ROW(None, "None")
// clang-format on
