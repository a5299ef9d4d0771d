#include <kvtest.h>
TEST(X,Y){}
