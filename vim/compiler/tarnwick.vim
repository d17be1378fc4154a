" Vim compiler file: after ":compiler tarnwick" ":make" fills the error list with the faults of the
" directory that the file lies in.
if exists('current_compiler')
  finish
endif
let current_compiler = 'tarnwick'
if exists(':CompilerSet') != 2
  command -nargs=* CompilerSet setlocal <args>
endif

CompilerSet makeprg=tarnwick-config\ check\ --format=gcc\ %:p:h:S
CompilerSet errorformat=%f:%l:%c:\ %trror:\ %m,%f:%l:%c:\ %tarning:\ %m,%-G%.%#
