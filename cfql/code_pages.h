// The memory that program code takes in a process that seldom runs it.
#ifndef CFQL_CODE_PAGES_H
#define CFQL_CODE_PAGES_H

namespace cfql {

// Takes the code and the constants of the library that ADDRESS lies in out of the process's memory. The system brings
// each page back when it is used, from its cache of the file. Other threads may be running the code. Variables are not
// touched, nor is anything of a library whose code was relocated: its pages are not those of the file. Breakpoints that
// a debugger has set in the code are lost.
void release_code_pages(const void* address);

}  // namespace cfql

#endif
