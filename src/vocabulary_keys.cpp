// The keys and values that reading configuration does without.

#include "vocabulary.h"

namespace Tarnwick::Parser {

#define TARNWICK_DEFINE_KEY(name, type) const std::string kKey##name = #name;
#define TARNWICK_DEFINE_VALUE(name, text) const std::string kValue##name = text;
TARNWICK_AUDIO_KEYS(TARNWICK_DEFINE_KEY)
TARNWICK_CONFIG_KEYS(TARNWICK_DEFINE_KEY)
TARNWICK_DEVICES_KEYS(TARNWICK_DEFINE_KEY)
TARNWICK_FEATURES_KEYS(TARNWICK_DEFINE_KEY)
TARNWICK_NETWORK_KEYS(TARNWICK_DEFINE_KEY)
TARNWICK_VALUES(TARNWICK_DEFINE_VALUE)

}  // namespace Tarnwick::Parser
