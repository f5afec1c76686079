// Linked against a library whose calls have no client yet: the loader has to find all that it needs.
int main() {
    return 0;
}
