" The language server of yxst for ALE, which finds this file by itself.

call ale#Set('yxst_yxst_executable', 'yxst')
call ale#Set('yxst_yxst_config', {})

call ale#linter#Define('yxst', {
      \ 'name': 'yxst',
      \ 'lsp': 'stdio',
      \ 'executable': {buffer -> ale#Var(buffer, 'yxst_yxst_executable')},
      \ 'command': '%e lsp',
      \ 'language': 'yxst',
      \ 'project_root': {buffer -> fnamemodify(bufname(buffer), ':p:h')},
      \ 'lsp_config': {buffer -> ale#Var(buffer, 'yxst_yxst_config')},
      \ })
