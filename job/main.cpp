#include "job/JobApplication.h"

int main(int argc, char** argv) {
    return program::run<job::JobApplication>(argc, argv);
}
