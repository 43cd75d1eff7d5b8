" Scripts are recognised by their suffix. Vim's own rule, which comes first, takes them for
" Smalltalk; any other file type that is set already stays. Who has .st files of another kind says so:
"
"     let g:filetype_st = 'st'
function! s:detect() abort
  if index(['', 'st'], &filetype) >= 0
    let &l:filetype = get(g:, 'filetype_st', 'yxst')
  endif
endfunction

autocmd BufRead,BufNewFile *.st call s:detect()
