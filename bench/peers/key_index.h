/* A hash index of (group, key) to value. It stores where the texts are and owns none of them.
   Open addressing with 32-byte entries kept in one array: as little memory traffic per key as
   a general index can have. */
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "files.h"

struct slice {
    const char* start;
    size_t length;
};

struct key_entry {
    const char* key;
    const char* value;
    uint32_t key_length;
    uint32_t value_length;
    uint32_t group; /* position in key_index.groups */
    uint32_t hash;
};

struct key_index {
    struct key_entry* entries;
    size_t entry_count, entry_room;
    struct slice* groups;
    size_t group_count, group_room;
    uint32_t* slots; /* position in entries plus one; 0 is free */
    size_t slot_count;
    uint64_t group_hash; /* of the last group */
};

static inline uint64_t mix(uint64_t hash, uint64_t word) {
    __uint128_t product = (__uint128_t)(hash ^ word) * 0x9e3779b97f4a7c15u;
    return (uint64_t)product ^ (uint64_t)(product >> 64);
}

static inline uint64_t hash_text(uint64_t hash, struct slice text) {
    uint64_t word;

    for (; text.length >= 8; text.start += 8, text.length -= 8) {
        memcpy(&word, text.start, 8);
        hash = mix(hash, word);
    }
    word = text.length + 1;
    for (size_t i = 0; i < text.length; ++i)
        word = word << 8 | (unsigned char)text.start[i];
    return mix(hash, word);
}

static inline int same_text(struct slice a, struct slice b) {
    return a.length == b.length && memcmp(a.start, b.start, a.length) == 0;
}

/* Makes room for one more element of `size` bytes. */
static inline void* grow(void* elements, size_t count, size_t* room, size_t size) {
    if (count < *room)
        return elements;
    *room = *room ? *room * 2 : 64;
    return stop_if_null(realloc(elements, *room * size));
}

static inline void spread_entries(struct key_index* index) {
    index->slot_count = index->slot_count ? index->slot_count * 2 : 256;
    free(index->slots);
    index->slots = stop_if_null(calloc(index->slot_count, sizeof *index->slots));
    for (size_t i = 0; i < index->entry_count; ++i) {
        size_t slot = index->entries[i].hash & (index->slot_count - 1);
        while (index->slots[slot])
            slot = (slot + 1) & (index->slot_count - 1);
        index->slots[slot] = (uint32_t)i + 1;
    }
}

/* Returns the slot that holds the key, or the free slot where it would go. */
static inline uint32_t* find_slot(const struct key_index* index, struct slice group,
                                  struct slice key, uint32_t hash) {
    size_t slot = hash & (index->slot_count - 1);

    for (; index->slots[slot]; slot = (slot + 1) & (index->slot_count - 1)) {
        const struct key_entry* entry = &index->entries[index->slots[slot] - 1];
        if (entry->hash == hash && same_text((struct slice){entry->key, entry->key_length}, key) &&
            same_text(index->groups[entry->group], group))
            break;
    }
    return &index->slots[slot];
}

/* Keys stored from here on stand in `group`. */
static inline void open_group(struct key_index* index, struct slice group) {
    index->groups =
        grow(index->groups, index->group_count, &index->group_room, sizeof *index->groups);
    index->groups[index->group_count++] = group;
    index->group_hash = hash_text(1, group);
}

/* The last value stored for a key stays. */
static inline void store_key(struct key_index* index, struct slice key, struct slice value) {
    if (index->group_count == 0)
        open_group(index, (struct slice){"", 0});
    if (2 * (index->entry_count + 1) > index->slot_count)
        spread_entries(index);

    uint32_t group = (uint32_t)index->group_count - 1;
    uint32_t hash = (uint32_t)hash_text(index->group_hash, key);
    uint32_t* slot = find_slot(index, index->groups[group], key, hash);

    if (!*slot) {
        index->entries =
            grow(index->entries, index->entry_count, &index->entry_room, sizeof *index->entries);
        *slot = (uint32_t)++index->entry_count;
    }
    index->entries[*slot - 1] = (struct key_entry){
        key.start, value.start, (uint32_t)key.length, (uint32_t)value.length, group, hash};
}

/* Prints the key's value and returns the exit status, with the tool's 2 for a missing key. */
static inline int print_key(const struct key_index* index, const char* group_name,
                            const char* key_name) {
    struct slice group = {group_name, strlen(group_name)};
    struct slice key = {key_name, strlen(key_name)};

    if (index->slot_count == 0)
        return 2;
    uint32_t position =
        *find_slot(index, group, key, (uint32_t)hash_text(hash_text(1, group), key));
    if (!position)
        return 2;
    const struct key_entry* entry = &index->entries[position - 1];
    printf("%.*s\n", (int)entry->value_length, entry->value);
    return 0;
}
