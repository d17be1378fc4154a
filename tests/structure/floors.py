"""The floors of the library, from the ground up. A new file has to be placed here.

An include points to the same floor or to a lower one. Names are those of rooms: a header and the
source of the same stem are one room, and a folder below `src/` that ends in a slash stands for all
the rooms in it.
"""

FLOORS = [
    [
        "support/", "logging/", "api", "name_characters", "parser_types",
        "vocabulary", "vocabulary_keys", "vocabulary_names", "vocabulary_table",
    ],
    [
        "config_value", "value_sources", "environment_file", "dconf_source", "mount_entry", "diagnostic",
    ],
    [
        "config_store", "config_file", "template_text", "template_expander", "load_event", "load_teller",
    ],
    ["reference_resolver", "config_loader"],
    [
        "config_parser", "config_parser_data", "typed_lookup", "config_writer", "generator_helpers",
        "logger_settings",
    ],
]  # fmt: skip

# Rooms of several stems: a folder.
SHARED_ROOMS = {
    "logging/": "logging",
}

# The files that may name the class `ConfigParser`.
NAME_THE_PARSER = [
    "config_parser.h", "config_parser.cpp", "config_parser_data.h", "typed_lookup.cpp",
    "logger_settings.cpp",
]  # fmt: skip

# The files that may declare it, and take pointers to it as parameters, without knowing it.
DECLARE_THE_PARSER = ["logging/logger_config.h"]
