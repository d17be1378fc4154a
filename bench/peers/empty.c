/* The least a process can cost: the start of a C program that does nothing. */
int main(void) {
    return 0;
}
