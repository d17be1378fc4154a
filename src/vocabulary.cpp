#include "vocabulary.h"

#include "name_characters.h"

namespace Tarnwick::Parser {

const std::string kFilePattern = "*.conf";
const std::string kDefaultConfigDirectory = "/etc/tarnwick.conf.d";
const std::string kDefaultInstance = "default";
const std::string kPermittedNameCharacters(kNameCharacters);

// The groups, and the keys that tell whose configuration it is. The other names stand in a file of
// their own, which a program that does not name them leaves out: each costs its construction at
// every start.
#define TARNWICK_DEFINE_GROUP(name, KEYS) const std::string kGroup##name = #name;
#define TARNWICK_DEFINE_KEY(name, type) const std::string kKey##name = #name;
TARNWICK_GROUPS(TARNWICK_DEFINE_GROUP)
TARNWICK_GENERATED_CONFIG_KEYS(TARNWICK_DEFINE_KEY)

}  // namespace Tarnwick::Parser
