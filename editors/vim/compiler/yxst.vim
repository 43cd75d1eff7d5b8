" After ":compiler yxst" the command :make checks the script of the window, and what else it is
" given, files or folders; the messages go to the quickfix list.

if exists('current_compiler')
  finish
endif
let current_compiler = 'yxst'

CompilerSet makeprg=yxst\ check\ --format=gcc\ --quiet\ %:S
CompilerSet errorformat=%f:%l:%c:\ %trror:\ %m,%f:%l:%c:\ %tarning:\ %m,%f:%l:%c:\ %tote:\ %m
