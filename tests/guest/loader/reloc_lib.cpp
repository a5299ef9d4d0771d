// Data and code that the relocation test program reaches in every supported way.
extern "C" {
int lib_counter = 40;
int lib_table[3] = {1, 2, 3};
int lib_add(int x) { return x + lib_counter; }

// A pointer to data that cannot be interposed: a relative relocation inside the library.
static int hidden_value = 7;
int *lib_hidden_pointer = &hidden_value;
}
