// A library without any of the functions that are looked for.

extern "C" int not_what_you_look_for() {
    return 0;
}
