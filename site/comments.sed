# Turns the headers' plain comments into those that Doxygen reads: the file's own, those before a
# declaration, those behind a constant. Headings ("---- ... ----") stay plain.
1s:^/\* :/** \\file\n * :
t
\:^ */\* ----:b
s:^( *)/\* :\1/** :
t
s:^(#define [A-Z0-9_]+ +[^ ].*[^ ]) */\* (.*)$:\1 /**< \2:
s:^( +[A-Za-z_].*;) */\* (.*)$:\1 /**< \2:
