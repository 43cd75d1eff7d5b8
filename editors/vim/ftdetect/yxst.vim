" Scripts are recognised by their suffix; a file type that is set already stays.
autocmd BufRead,BufNewFile *.st setfiletype yxst
