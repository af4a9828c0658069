/* Stands for a flag of mingw-w64's own start-up objects. Its <locale.h> refers to it where plain
   characters are unsigned, and GoogleTest compiles itself like that. */
int __mingw_initcharmax = 0;
